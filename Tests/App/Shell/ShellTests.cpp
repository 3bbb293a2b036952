#include "App/Support/FakeDesktop.h"
#include "App/Support/WindowTexts.h"
#include "Shell/StatusIcon.h"
#include "Shell/StatusTexts.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <QApplication>
#include <QLabel>
#include <QLineEdit>
#include <QMessageBox>
#include <QMetaObject>
#include <QPointer>
#include <QPushButton>
#include <QScreen>
#include <QTimeEdit>
#include <algorithm>
#include <filesystem>
#include <fstream>

namespace tavik {
namespace {

namespace fs = std::filesystem;
using testing::AllOf;
using testing::Contains;
using testing::Each;
using testing::ElementsAre;
using testing::HasSubstr;

TEST(StatusTexts, theCountStandsInTheIconAndInTheToolTip) {
    EXPECT_EQ(statusBadge(0), "");
    EXPECT_EQ(statusToolTip(0), "Tavik");
    EXPECT_EQ(statusToolTip(3), "Tavik：3 个生词待复习");
    EXPECT_EQ(statusBadge(99), "99");
    EXPECT_EQ(statusBadge(100), "99+");
    const auto image = [](std::int64_t due) { return statusIcon(due).pixmap(22).toImage(); };
    EXPECT_FALSE(image(0).isNull());
    EXPECT_NE(image(0), image(3));
    EXPECT_NE(image(3), image(12));
}

class ShellTest : public testing::Test, protected test::FakeDesktop {
protected:
    bool open() { return delegate.openEnvironment(data, std::nullopt); }

    /// What the visible window of the program says.
    static std::vector<std::string> shownTexts() {
        // What follows a change, and what that brings into view.
        QApplication::processEvents();
        QApplication::processEvents();
        std::vector<std::string> texts;
        for (const QWidget* const window : QApplication::topLevelWidgets())
            if (window->isVisible())
                for (const QLabel* const label : window->findChildren<QLabel*>())
                    if (label->isVisible()) texts.push_back(label->text().toStdString());
        return texts;
    }

    /// The visible windows with that title.
    static std::vector<QWidget*> windowsWith(const QString& title) {
        QApplication::processEvents();
        std::vector<QWidget*> found;
        for (QWidget* const window : QApplication::topLevelWidgets())
            if (window->isVisible() && window->windowTitle() == title) found.push_back(window);
        return found;
    }

    /// Answers the next message box with its button `index` and keeps what the box said.
    void answerNextBox(qsizetype index) {
        const auto answer = [this, index] {
            auto* const box = qobject_cast<QMessageBox*>(QApplication::activeModalWidget());
            ASSERT_NE(box, nullptr);
            boxTexts.push_back((box->text() + '|' + box->informativeText()).toStdString());
            box->buttons().at(index)->click();
        };
        QMetaObject::invokeMethod(QApplication::instance(), answer, Qt::QueuedConnection);
    }

    fs::path data = directory.file("data");
    AppDelegate delegate{settings, shellPorts()};
    std::vector<std::string> boxTexts;
};

TEST_F(ShellTest, aLaterStartShowsTheProgramAlsoWithoutATray) {
    ASSERT_TRUE(open());
    delegate.finishLaunching();
    EXPECT_TRUE(shownTexts().empty());
    instance.show();
    EXPECT_THAT(shownTexts(), Contains("生词本还是空的"));
    EXPECT_THAT(shownTexts(), Contains(HasSubstr("没有系统托盘")));
    tray.current.set(TrayHost::Presence::present);
    EXPECT_THAT(shownTexts(), Not(Contains(HasSubstr("没有系统托盘"))));
    SQLiteDB((data / AppEnvironment::bookName).string(), false).execute("DROP TABLE card");
    wakeSignal.wake();
    queue.runAll();
    EXPECT_THAT(shownTexts(), Contains("现在读不到生词本"));
    EXPECT_THAT(shownTexts(), Contains(HasSubstr("restore")));
}

TEST_F(ShellTest, theWindowFollowsTheBookAfterAWake) {
    ASSERT_TRUE(open());
    delegate.finishLaunching();
    delegate.showProgram();
    VocabularyStore elsewhere((data / AppEnvironment::bookName).string());
    test::addWord(elsewhere, "one", std::nullopt, test::day(0));
    wakeSignal.wake();
    EXPECT_THAT(shownTexts(), Contains("生词本里有 1 个生词，1 个待复习"));
}

TEST_F(ShellTest, theMenuHoldsEverythingInItsOrder) {
    trust.current.set(AccessibilityTrust::State::notTrusted);
    ASSERT_TRUE(open());
    VocabularyStore elsewhere((data / AppEnvironment::bookName).string());
    test::addWord(elsewhere, "one", std::nullopt, test::day(0));
    delegate.finishLaunching();
    instance.show();
    std::vector<std::string> titles;
    for (const QPushButton* const row : windowsWith("Tavik").at(0)->findChildren<QPushButton*>())
        titles.push_back((row->text() + '|' + row->shortcut().toString()).toStdString());
    EXPECT_THAT(titles,
                ElementsAre("⚠️ 未授权辅助功能，无法划词 — 点此设置|",
                            "划词查询  ⌥D|", "输入查词…|Ctrl+L", "今日复习（1 个待复习）|Ctrl+R",
                            "生词本（1）|Ctrl+V", "设置…|Ctrl+,", "退出 Tavik|Ctrl+Q"));
}

TEST_F(ShellTest, whoAnswersTheReminderGetsTheReview) {
    ASSERT_TRUE(open());
    delegate.finishLaunching();
    notifier.respond("tavik.daily-review");
    EXPECT_EQ(windowsWith("Tavik · 今日复习").size(), 1U);
    QApplication::closeAllWindows();
}

TEST_F(ShellTest, theSettingsOfTheReminderActAtOnce) {
    ASSERT_TRUE(open());
    delegate.finishLaunching();
    delegate.showSettings();
    QWidget& window = *windowsWith("Tavik 设置").at(0);
    test::buttonOf(window, "每天提醒我复习(&R)").click();
    EXPECT_FALSE(settings.reminderEnabled.value());
    test::settle();
    EXPECT_FALSE(window.findChild<QTimeEdit*>()->isEnabled());
    settings.reminderEnabled.set(true);
    test::settle();
    window.findChild<QTimeEdit*>()->setTime(QTime(20, 45));
    EXPECT_EQ(settings.reminderHour.value(), 9) << "the user may be on the way to another time";
    test::pressKey(*window.findChild<QTimeEdit*>(), Qt::Key_Return);
    EXPECT_EQ(settings.reminderHour.value(), 20);
    EXPECT_EQ(settings.reminderMinute.value(), 45);
    notifier.answerAll(Notifier::AuthorizationStatus::denied);
    EXPECT_THAT(test::textsOf(window), Contains(HasSubstr("没有通知服务")));
    test::buttonOf(window, "发送测试通知").click();
    pass(std::chrono::seconds(1));
    EXPECT_EQ(notifier.notifications.size(), 1U);
    window.close();
}

TEST_F(ShellTest, aReviewBeginsAnewAndTheBookComesBackAsItIs) {
    EXPECT_EQ(reviewRow(0), "今日复习（已完成）");
    EXPECT_EQ(reviewRow(3), "今日复习（3 个待复习）");
    EXPECT_EQ(vocabularyRow(12), "生词本（12）");
    ASSERT_TRUE(open());
    delegate.finishLaunching();
    delegate.showReview();
    const QPointer<QWidget> first = windowsWith("Tavik · 今日复习").at(0);
    delegate.showReview();
    EXPECT_NE(windowsWith("Tavik · 今日复习"), std::vector<QWidget*>{first.data()});
    EXPECT_EQ(windowsWith("Tavik · 今日复习").size(), 1U);
    delegate.showVocabulary();
    QWidget* const book = windowsWith("Tavik · 生词本").at(0);
    EXPECT_EQ(book->size(), QSize(1180, 640).boundedTo(book->screen()->availableSize() * 9 / 10));
    book->resize(800, 500);
    delegate.showVocabulary();
    EXPECT_EQ(windowsWith("Tavik · 生词本"), std::vector<QWidget*>{book});
    EXPECT_EQ(book->size(), QSize(800, 500));
    book->close();
    delegate.showVocabulary();
    EXPECT_NE(windowsWith("Tavik · 生词本").at(0)->size(), QSize(800, 500));
    QApplication::closeAllWindows();
}

TEST_F(ShellTest, accessibilityIsSwitchedOnAgainOnlyForWhoAgreedToIt) {
    ASSERT_TRUE(open());
    delegate.finishLaunching();
    EXPECT_EQ(trust.timesEnabled, 0);
    settings.onboardingDone.set(true);
    delegate.finishLaunching();
    EXPECT_EQ(trust.timesEnabled, 1);
}

/// In front is an application that tells nothing but what can be copied from it.
class HotKeyTest : public ShellTest {
protected:
    HotKeyTest() {
        workspace.front = {"阅读器", "reader", 4'000'000'000, "", {}, {}};
        accessibility.systemWide = &accessibility.make("desktop");
        pasteboard.copied = "cat";
        trust.current.set(AccessibilityTrust::State::trusted);
        EXPECT_TRUE(open());
    }

    static bool isShown(const QString& title) {
        QApplication::processEvents();
        return std::ranges::any_of(QApplication::topLevelWidgets(), [&](const QWidget* window) {
            return window->isVisible() && window->windowTitle() == title;
        });
    }

    std::vector<std::string> rowTitles() {
        instance.show();
        std::vector<std::string> titles;
        QApplication::processEvents();
        for (const QWidget* const window : QApplication::topLevelWidgets())
            if (window->isVisible())
                for (const auto* const button : window->findChildren<QPushButton*>())
                    titles.push_back(button->text().toStdString());
        return titles;
    }

    std::vector<std::string> logged() const {
        std::ifstream log(directory.file("capture.log"));
        std::vector<std::string> lines;
        for (std::string line; std::getline(log, line);)
            lines.push_back(line);
        return lines;
    }

    const QString popup = QStringLiteral("Tavik 释义");
    const QString quick = QStringLiteral("Tavik 查词");
    const QString question = QStringLiteral("欢迎使用 Tavik");
};

TEST_F(HotKeyTest, aPressShowsWhatIsSelectedAndLogsIt) {
    delegate.finishLaunching();
    EXPECT_EQ(hotKeys.held, std::pair(2U, 2048U));
    EXPECT_THAT(rowTitles(), Contains("划词查询  ⌥D"));
    hotKeys.press();
    hotKeys.press();
    EXPECT_TRUE(runUntil([this] { return isShown(popup); }));
    EXPECT_EQ(std::ranges::count(pasteboard.calls, "copy"), 1) << "one at a time";
    hotKeys.press();
    EXPECT_TRUE(runUntil([this] { return logged().size() == 2; }));
    EXPECT_EQ(std::ranges::count(pasteboard.calls, "copy"), 2);
    EXPECT_THAT(logged(), Each(HasSubstr("text=\"cat\"")));
    EXPECT_TRUE(notifier.notifications.empty());
}

TEST_F(HotKeyTest, whoSelectedNothingOrGaveNoLeaveIsToldWhatToDo) {
    pasteboard.copied.reset();
    delegate.finishLaunching();
    hotKeys.press();
    EXPECT_TRUE(runUntil([this] { return isShown(quick); }));
    EXPECT_THAT(shownTexts(),
                Contains(AllOf(HasSubstr("没有读取到选中的文字"), HasSubstr("⌥D（Alt+D）"))));
    EXPECT_TRUE(notifier.notifications.empty());
    windowsWith(quick).at(0)->close();
    trust.current.set(AccessibilityTrust::State::notTrusted);
    EXPECT_THAT(rowTitles(),
                Contains("⚠️ 未授权辅助功能，无法划词 — 点此设置"));
    hotKeys.press();
    EXPECT_TRUE(isShown(question));
    EXPECT_FALSE(isShown(popup));
    for (auto* const button : QApplication::activeWindow() == nullptr
                                  ? QList<QAbstractButton*>()
                                  : QApplication::activeWindow()->findChildren<QAbstractButton*>())
        if (button->text() == u"开启") button->click();
    EXPECT_EQ(trust.timesEnabled, 1);
    EXPECT_TRUE(settings.onboardingDone.value());
}

TEST_F(HotKeyTest, whatIsTypedInsteadIsKeptUntilItIsLookedUp) {
    pasteboard.copied.reset();
    delegate.finishLaunching();
    delegate.showQuickLookup();
    const QPointer<QWidget> first = windowsWith(quick).at(0);
    EXPECT_TRUE(first->windowFlags().testFlag(Qt::WindowStaysOnTopHint));
    first->findChild<QLineEdit*>()->setText("ephemeral");
    hotKeys.press();
    EXPECT_TRUE(runUntil([&] { return windowsWith(quick) != std::vector<QWidget*>{first}; }));
    QWidget& second = *windowsWith(quick).at(0);
    EXPECT_EQ(second.findChild<QLineEdit*>()->text(), "ephemeral");
    test::buttonOf(second, "查词").click();
    EXPECT_FALSE(isShown(quick));
    EXPECT_TRUE(runUntil([this] { return isShown(popup); }));
    EXPECT_EQ(windowsWith(popup).at(0)->accessibleName(), "Tavik 释义：ephemeral");
}

TEST_F(HotKeyTest, aCombinationThatIsTakenIsToldOfAndAnotherOneTried) {
    hotKeys.taken = std::pair(2U, 2048U);
    delegate.finishLaunching();
    EXPECT_THAT(rowTitles(), Contains("划词查询  ⌥D（快捷键被占用）"));
    settings.hotKey.set({40, 0x1000});
    QApplication::processEvents();
    EXPECT_THAT(rowTitles(), Contains("划词查询  ⌃K"));
    EXPECT_EQ(hotKeys.held, std::pair(40U, 0x1000U));
}

TEST_F(HotKeyTest, aDesktopThatAsksTheUserHasNotRefused) {
    hotKeys.taken = std::pair(2U, 2048U);
    hotKeys.asking.set(true);
    delegate.finishLaunching();
    EXPECT_THAT(rowTitles(), Contains("划词查询  ⌥D"));
    hotKeys.asking.set(false);
    QApplication::processEvents();
    EXPECT_THAT(rowTitles(), Contains("划词查询  ⌥D（快捷键被占用）"));
}

TEST_F(ShellTest, aBookThatCannotBeOpenedIsToldOfAndEndsTheLaunch) {
    fs::create_directories(data);
    std::ofstream(data / AppEnvironment::bookName) << "this is no database, whatever its name says";
    answerNextBox(0);
    EXPECT_FALSE(open());
    std::ofstream(directory.file("file")) << "x";
    data = directory.file("file/data");
    answerNextBox(0);
    EXPECT_FALSE(open());
    ASSERT_EQ(boxTexts.size(), 2U);
    for (const std::string& text : boxTexts)
        EXPECT_THAT(text, HasSubstr("Tavik 无法打开数据库|"));
    EXPECT_THAT(boxTexts.front(), HasSubstr("SQLite "));
}

TEST_F(ShellTest, anEmptiedBookIsSetAsideOnlyWhenTheUserSaysSo) {
    fs::create_directories(data);
    const fs::path log = data / "tavik.sqlite-wal";
    std::ofstream(log) << "words";
    answerNextBox(1);
    EXPECT_FALSE(open());
    EXPECT_EQ(fs::file_size(log), 5U);
    answerNextBox(0);
    EXPECT_TRUE(open());
    std::size_t kept = 0;
    for (const auto& file : fs::directory_iterator(data))
        if (file.path().string().find(".emptied-") != std::string::npos) kept += file.file_size();
    EXPECT_EQ(kept, 5U);
}

} // namespace
} // namespace tavik
