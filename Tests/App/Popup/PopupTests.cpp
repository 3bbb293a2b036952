#include "App/Support/FakeDesktop.h"
#include "Dictionary/DefinitionText.h"
#include "Support/LoopbackServer.h"
#include "Support/SampleDictionary.h"
#include "UI/Popup/PopupController.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <QAccessible>
#include <QApplication>
#include <QClipboard>
#include <QKeyEvent>
#include <QLabel>
#include <QScrollArea>
#include <QScrollBar>

namespace tavik {
namespace {

using testing::AllOf;
using testing::Contains;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

using Words = std::vector<std::string>;

TEST(DefinitionText, partsOfSpeechAndFieldsAreSetApart) {
    EXPECT_EQ(definitionText("vt. 使跑, 参赛"), (DefinitionText{"vt.", "使跑, 参赛"}));
    EXPECT_EQ(definitionText("a. & adv. 快"), (DefinitionText{"a. & adv.", "快"}));
    EXPECT_EQ(definitionText("[计] 运行"), (DefinitionText{"[计]", "运行"}));
    for (const char* const whole : {"放弃, 停止", "run的过去式", "etc.", "n.", "[", "[计]", "..."})
        EXPECT_EQ(definitionText(whole), (DefinitionText{"", whole}));
}

class PopupTest : public testing::Test, protected test::FakeDesktop {
protected:
    static CaptureResult capture(const std::string& text,
                                 std::optional<ScreenRect> anchor = ScreenRect{300, 500, 60, 20}) {
        return {text, "He was running late.", {"Mousepad", "mousepad", std::nullopt}, anchor};
    }

    void show(const std::string& text) { popup.show(capture(text), false); }

    static QWidget* panel() {
        for (QWidget* const window : QApplication::topLevelWidgets())
            if (window->isVisible() && window->windowTitle() == u"Tavik 释义") return window;
        return nullptr;
    }

    /// What can be read in the popup, the buttons' texts among it.
    static Words texts() {
        QApplication::processEvents();
        QApplication::processEvents();
        Words found;
        if (panel() == nullptr) return found;
        for (const QLabel* const label : panel()->findChildren<QLabel*>())
            if (label->isVisible()) found.push_back(label->text().toStdString());
        for (const auto* const button : panel()->findChildren<QAbstractButton*>())
            found.push_back(button->text().toStdString());
        return found;
    }

    static QAbstractButton* button(const QString& text) {
        for (auto* const button : panel()->findChildren<QAbstractButton*>())
            if (button->text() == text) return button;
        throw std::runtime_error("no button " + text.toStdString());
    }

    static void press(int key) {
        QWidget* const focus = panel()->focusWidget();
        QKeyEvent event(QEvent::KeyPress, key, Qt::NoModifier);
        QApplication::sendEvent(focus == nullptr ? panel() : focus, &event);
    }

    void useModel(const std::string& scenario) {
        server.emplace();
        settings.llmProvider.set(LLMConfig::Provider::openAICompatible);
        settings.llmBaseURL.set(server->baseURL(scenario));
        settings.llmModel.set("test");
    }

    bool explanationCame() {
        return runUntil([this] {
            const auto& state = popup.shownModel()->explain().value();
            return state && !std::holds_alternative<PopupModel::Loading>(*state);
        });
    }

    std::string sampleDictionary() const {
        std::string path = directory.file("dict.sqlite");
        test::makeSampleDictionary(path);
        return path;
    }

    std::string data = directory.file("data");
    AppEnvironment env{data, settings, sampleDictionary(), environmentPorts()};
    PopupController popup{env, windows, mouse};
    std::optional<test::LoopbackServer> server;
};

TEST_F(PopupTest, aLookupByKeyStandsByTheSelectionSpeaksAndHasTheKeyboard) {
    settings.autoSpeak.set(true);
    popup.show(capture("running"), false);
    EXPECT_THAT(texts(), Contains("「running」是 run 的变形"));
    EXPECT_THAT(texts(), Contains("/rʌn/"));
    EXPECT_THAT(texts(), Contains("跑"));
    EXPECT_THAT(windows.calls, ElementsAre("take"));
    EXPECT_THAT(speech.calls, ElementsAre("stop", "en-US 0.9: run"));
    const auto frame = popup.frame();
    ASSERT_TRUE(frame);
    EXPECT_EQ(frame->x, 288);
    EXPECT_EQ(frame->y, 800 - 500 + 8) << "from the top of the desktop";
    EXPECT_EQ(panel()->pos() + QPoint(qRound(windows.clicks.x), qRound(windows.clicks.y)),
              QPoint(288, 308));
    popup.show(capture("zzyzx"), false);
    EXPECT_EQ(speech.calls.size(), 2U) << "no word";
    EXPECT_THAT(texts(), Contains("这不是词典里的单词。在 设置 › 大模型 中配置后即可翻译整句。"));
    popup.close();
    EXPECT_EQ(panel(), nullptr);
    EXPECT_THAT(windows.calls, ElementsAre("take", "return", "take", "return"));
    EXPECT_FALSE(mouse.isObserved());
}

TEST_F(PopupTest, thePopupOfTheMouseIsSilentAndTakesTheKeyboardOnlyWhenPressed) {
    settings.autoSpeak.set(true);
    useModel("good");
    popup.show(capture("running"), true);
    EXPECT_TRUE(popup.isHover());
    EXPECT_THAT(windows.calls, IsEmpty());
    EXPECT_THAT(speech.calls, IsEmpty());
    EXPECT_FALSE(popup.shownModel()->explain().value());
    mouse.press({300, 320});
    EXPECT_THAT(windows.calls, ElementsAre("take"));
    popup.setClosesOnOutsideClick(false);
    mouse.press({10, 10});
    EXPECT_TRUE(popup.isVisible());
    popup.setClosesOnOutsideClick(true);
    mouse.press({10, 10});
    EXPECT_FALSE(popup.isVisible());
}

TEST_F(PopupTest, onAScaledScreenTheFrameIsInItsPixels) {
    windows.shown.push_back({{1280, 0, 2560, 1600}, {1280, 0, 2560, 1600}, 2});
    // 200 below the top of the second screen, whose origin is the lower edge of the first.
    popup.show(capture("running", ScreenRect{1680, 560, 100, 40}), false);
    const auto frame = popup.frame();
    ASSERT_TRUE(frame);
    EXPECT_EQ(frame->x, 1680 - 2 * 12);
    EXPECT_EQ(frame->y, 240 + 2 * 8);
    EXPECT_EQ(frame->width, 2 * PopupView::viewWidth);
    windows.mouse = {100, 100};
    popup.show(capture("running", std::nullopt), false);
    EXPECT_EQ(popup.frame()->x, 80);
    EXPECT_EQ(popup.frame()->y, 116) << "below the mouse";
}

TEST_F(PopupTest, enterSavesTheWordWithItsSentence) {
    show("running");
    QKeyEvent held(QEvent::KeyPress, Qt::Key_Return, Qt::NoModifier, {}, true);
    QApplication::sendEvent(panel(), &held);
    EXPECT_EQ(env.store().wordCount(), 0) << "pressed for a window that is gone";
    press(Qt::Key_Return);
    EXPECT_THAT(texts(), Contains("已在生词本"));
    EXPECT_EQ(env.store().wordCount(), 1);
    EXPECT_EQ(env.store().items("").front().word.lemma, "run");
    show("run");
    EXPECT_THAT(texts(), Contains("已在生词本"));
    show("give up");
    SQLiteDB(data + "/tavik.sqlite", false).execute("DROP TABLE encounter");
    press(Qt::Key_Return);
    EXPECT_THAT(texts(), Contains(HasSubstr("生词本")));
    EXPECT_TRUE(popup.shownModel()->saveError().value());
    EXPECT_THAT(texts(), Contains("加入生词本"));
}

TEST_F(PopupTest, theKeyboardReachesEverything) {
    Words videos;
    popup.setOnVideo([&](const std::string& word) { videos.push_back(word); });
    show("running");
    QApplication::setActiveWindow(panel());
    panel()->setFocus();
    Words reached;
    for (int i = 0; i < 5; ++i) {
        press(Qt::Key_Tab);
        reached.push_back(panel()->focusWidget()->accessibleName().toStdString());
    }
    EXPECT_THAT(reached, ElementsAre("朗读", "关闭", "加入生词本", "视频例句", "复制译文"));
    button(QStringLiteral("视频例句"))->setFocus();
    press(Qt::Key_Return);
    EXPECT_THAT(videos, ElementsAre("run"));
    EXPECT_EQ(env.store().wordCount(), 0) << "what has the focus is meant";
    QWidget* const closing = panel();
    press(Qt::Key_Escape);
    EXPECT_FALSE(popup.isVisible());
    QKeyEvent late(QEvent::KeyPress, Qt::Key_Return, Qt::NoModifier);
    closing->setFocus();
    QApplication::sendEvent(closing, &late);
    popup.save();
    EXPECT_EQ(env.store().wordCount(), 0) << "it is closed";
}

TEST_F(PopupTest, whatIsTooLongIsScrolledByKeysToo) {
    windows.shown.front().visibleFrame.height = 300;
    show("running");
    const auto* const bar = panel()->findChild<QScrollArea*>()->verticalScrollBar();
    QApplication::processEvents();
    ASSERT_GT(bar->maximum(), 0);
    press(Qt::Key_End);
    EXPECT_EQ(bar->value(), bar->maximum());
    press(Qt::Key_Home);
    EXPECT_EQ(bar->value(), 0);
}

TEST_F(PopupTest, itsOwnSelectionIsLookedUpOnlyWhileItHasTheKeyboard) {
    show("running");
    const auto select = [] {
        for (auto* const label : panel()->findChildren<QLabel*>())
            if (label->text() == u"跑") label->setSelection(0, 1);
    };
    select();
    EXPECT_FALSE(popup.lookUpOwnSelection());
    QApplication::setActiveWindow(panel());
    EXPECT_TRUE(popup.lookUpOwnSelection());
    EXPECT_EQ(popup.shownModel()->result().selection, "跑");
}

TEST_F(PopupTest, screenReadersKnowEveryPart) {
    show("running");
    const auto interfaceOf = [](QObject* object) {
        return QAccessible::queryAccessibleInterface(object);
    };
    EXPECT_EQ(interfaceOf(panel())->text(QAccessible::Name), QStringLiteral("Tavik 释义：run"));
    for (auto* const button : panel()->findChildren<QAbstractButton*>()) {
        QAccessibleInterface* const described = interfaceOf(button);
        EXPECT_EQ(described->role(), QAccessible::Button);
        EXPECT_FALSE(described->text(QAccessible::Name).isEmpty());
        EXPECT_TRUE(described->actionInterface()->actionNames().contains(
            QAccessibleActionInterface::pressAction()));
    }
    for (auto* const label : panel()->findChildren<QLabel*>())
        EXPECT_EQ(interfaceOf(label)->role(), QAccessible::StaticText);
}

TEST_F(PopupTest, itFollowsTheDesktopsColours) {
    show("running");
    const auto ground = [] { return panel()->palette().color(QPalette::Window).lightness(); };
    EXPECT_GT(ground(), 200);
    appearance.dark.set(true);
    QApplication::processEvents();
    EXPECT_LT(ground(), 80);
}

TEST_F(PopupTest, theExplanationComesIntoThePopupThatGrowsDownwards) {
    useModel("good");
    show("running");
    EXPECT_THAT(texts(), Contains("正在分析它在这句话里的意思…"));
    const ScreenRect before = *popup.frame();
    QGuiApplication::clipboard()->setText(QStringLiteral("before"));
    button(QStringLiteral("复制译文"))->click();
    EXPECT_EQ(QGuiApplication::clipboard()->text(), QString());
    ASSERT_TRUE(explanationCame());
    EXPECT_THAT(texts(), Contains("放弃"));
    EXPECT_THAT(texts(), Contains("她放弃了。"));
    EXPECT_EQ(popup.frame()->y, before.y);
    EXPECT_GT(popup.frame()->height, before.height);
    EXPECT_EQ(windows.clicks.height, popup.frame()->height);
    button(QStringLiteral("复制译文"))->click();
    EXPECT_EQ(QGuiApplication::clipboard()->text(), QStringLiteral("她放弃了。"));
    press(Qt::Key_Return);
    const auto id = env.store().wordIDForLemma("run");
    ASSERT_TRUE(id);
    EXPECT_EQ(env.store().encounters(*id).front().contextMeaning, "放弃");
}

TEST_F(PopupTest, aFailureIsToldAndClosingCancels) {
    useModel("unauthorized");
    show("running");
    ASSERT_TRUE(explanationCame());
    EXPECT_THAT(texts(), Contains(HasSubstr("语境释义失败：")));
    useModel("drip");
    show("running");
    ASSERT_TRUE(runUntil([this] { return !server->requests().empty(); }));
    const auto start = std::chrono::steady_clock::now();
    popup.close();
    EXPECT_TRUE(runUntil([this] { return !env.tasks().isBusy(); }));
    EXPECT_LT(std::chrono::steady_clock::now() - start, std::chrono::seconds(5));
    EXPECT_EQ(popup.shownModel(), nullptr);
}

TEST_F(PopupTest, whatComesFromOutsideIsTextAndNeverMarkup) {
    show("<b>bold</b> & <img src=x>\nand a second line of it");
    for (const auto* const label : panel()->findChildren<QLabel*>())
        EXPECT_EQ(label->textFormat() == Qt::RichText, label->objectName() == u"examples");
    EXPECT_THAT(texts(), Contains("<b>bold</b> & <img src=x> and a second line of it"));
    SQLiteDB(directory.file("dict.sqlite"), false)
        .execute("UPDATE examples SET en = 'run <b>' || en, zh = '<img src=x>'");
    show("running");
    EXPECT_THAT(texts(), Contains(AllOf(HasSubstr("&lt;b&gt;"), HasSubstr("&lt;img src=x&gt;"))));
    show(std::string(5000, 'x'));
    EXPECT_LT(popup.frame()->height, 776 * 0.6 + 1);
}

} // namespace
} // namespace tavik
