#include "App/Support/FakeDesktop.h"
#include "App/Support/WindowTexts.h"
#include "Support/SampleDictionary.h"
#include "UI/Quick/QuickView.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <QListView>
#include <memory>

namespace tavik {
namespace {

using testing::Contains;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

class QuickViewTest : public testing::Test, protected test::FakeDesktop {
protected:
    void open(const std::string& note = {}, const std::string& typed = {}) {
        view = std::make_unique<QuickView>(
            env,
            QuickActions{
                .onLookup = [this](const CaptureResult& result) { results.push_back(result); },
                .onClose = [this] { ++timesClosed; }},
            note, typed);
        view->show();
        test::settle();
    }

    QLineEdit& field() const { return *view->findChild<QLineEdit*>(); }

    void type(const QString& text) const {
        for (const QChar character : text)
            test::pressKey(field(), 0, character);
        test::settle();
    }

    void press(int key) const {
        test::pressKey(field(), key);
        test::settle();
    }

    std::vector<std::string> rows() const {
        std::vector<std::string> words;
        const auto* const list = view->findChild<QListView*>();
        for (int row = 0; list->isVisible() && row < list->model()->rowCount(); ++row)
            words.push_back(list->model()->index(row, 0).data().toString().toStdString());
        return words;
    }

    std::string text() const { return field().text().toStdString(); }

    std::vector<std::string> lookedUp() const {
        std::vector<std::string> texts;
        for (const CaptureResult& result : results)
            texts.push_back(result.text);
        return texts;
    }

    std::filesystem::path dictionary() const {
        std::filesystem::path path = directory.file("dict.sqlite");
        test::makeSampleDictionary(path);
        return path;
    }

    AppEnvironment env{directory.file("data"), settings, dictionary(), environmentPorts()};
    std::vector<CaptureResult> results;
    int timesClosed = 0;
    std::unique_ptr<QuickView> view;
};

TEST_F(QuickViewTest, whatIsTypedIsLookedUpAsItIsAndNothingElseIsKnownOfIt) {
    open();
    press(Qt::Key_Return);
    type(QStringLiteral("  "));
    press(Qt::Key_Return);
    EXPECT_THAT(results, IsEmpty());
    type(QStringLiteral("Ran!"));
    press(Qt::Key_Enter);
    EXPECT_THAT(results, ElementsAre(CaptureResult{
                             .text = "  Ran!", .source = {}, .method = CaptureMethod::manual}));
    EXPECT_STREQ(tavik::text(results.front().method), "manual");
}

TEST_F(QuickViewTest, suggestionsFollowTheTextAndTheArrowsLeadThroughThemAndBack) {
    open();
    type(QStringLiteral("ru"));
    const auto suggested = rows();
    ASSERT_GE(suggested.size(), 2U);
    EXPECT_THAT(suggested, Contains("run"));
    press(Qt::Key_Down);
    EXPECT_EQ(text(), suggested.at(0));
    EXPECT_EQ(rows(), suggested) << "choosing is not typing";
    press(Qt::Key_Down);
    EXPECT_EQ(text(), suggested.at(1));
    press(Qt::Key_Up);
    press(Qt::Key_Up);
    EXPECT_EQ(text(), "ru") << "what was typed is one of the places";
    press(Qt::Key_Up);
    EXPECT_EQ(text(), suggested.back());
    press(Qt::Key_Down);
    press(Qt::Key_Down);
    press(Qt::Key_Return);
    EXPECT_THAT(lookedUp(), ElementsAre(suggested.front()));
    type(QStringLiteral("zzz"));
    EXPECT_THAT(rows(), IsEmpty());
    EXPECT_THAT(test::textsOf(*view), Contains(HasSubstr("没有这样开头的词")));
    press(Qt::Key_Down);
    EXPECT_EQ(text(), suggested.front() + "zzz");
}

TEST_F(QuickViewTest, aKeyThatComesBeforeTheSuggestionsFindsThoseOfTheWholeText) {
    open();
    test::pressKey(field(), 0, QStringLiteral("r"));
    test::pressKey(field(), 0, QStringLiteral("u"));
    test::pressKey(field(), Qt::Key_Down);
    EXPECT_THAT(text(), testing::StartsWith("ru"));
    EXPECT_NE(text(), "ru");
}

TEST_F(QuickViewTest, itSaysWhyItCameAndKeepsWhatWasTypedToBeTypedOver) {
    open("没有读取到选中的文字", "run");
    EXPECT_THAT(test::textsOf(*view), Contains("没有读取到选中的文字"));
    EXPECT_THAT(rows(), Contains("run"));
    EXPECT_EQ(field().selectedText(), QStringLiteral("run"));
    type(QStringLiteral("b"));
    EXPECT_EQ(view->typed(), "b");
}

} // namespace
} // namespace tavik
