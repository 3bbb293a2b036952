#include "App/Support/FakeDesktop.h"
#include "App/Support/WindowTexts.h"
#include "UI/Browser/VocabularyView.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <QClipboard>
#include <QFile>

namespace tavik {
namespace {

using test::buttonOf;
using test::pressKey;
using test::textsOf;
using testing::AllOf;
using testing::Contains;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Not;
using testing::StartsWith;

using Words = std::vector<std::string>;

class BrowserTest : public testing::Test, protected test::FakeDesktop {
protected:
    BrowserTest() {
        DictEntry entry;
        entry.phonetic = "rʌn";
        entry.translations = {"n. 跑"};
        run = env.store()
                  .add("run", "run", entry, "ran", "He ran <far>.", "跑了",
                       {"Firefox", {}, "https://www.example.com/a"}, test::day(0))
                  .wordID;
        go = test::addWord(env.store(), "go", "They go by night.", test::day(0.5)).wordID;
    }

    static std::vector<std::string> lemmasOf(const VocabularyModel& model) {
        std::vector<std::string> lemmas;
        for (const VocabItem& item : model.items().value())
            lemmas.push_back(item.word.lemma);
        return lemmas;
    }

    void spoil(const char* statement) {
        SQLiteDB(data + "/" + AppEnvironment::bookName, false).execute(statement);
    }

    std::string data = directory.file("data");
    AppEnvironment env{data, settings, std::nullopt, environmentPorts()};
    std::int64_t run = 0;
    std::int64_t go = 0;
};

TEST_F(BrowserTest, aSearchFindsWordsGlossesAndSentences) {
    VocabularyModel model(env);
    EXPECT_THAT(lemmasOf(model), ElementsAre("go", "run"));
    for (const char* const text : {"  RU", "跑", "<far>"}) {
        model.setSearch(text);
        EXPECT_THAT(lemmasOf(model), ElementsAre("run")) << text;
    }
    model.select(go);
    EXPECT_EQ(model.selectedItem(), nullptr) << "it is not among those found";
    EXPECT_EQ(model.encounters().value().size(), 1U);
    model.setSearch("");
    EXPECT_EQ(model.selectedItem()->word.id, go);
}

TEST_F(BrowserTest, deletingKeepsTheChoiceOfAnotherWord) {
    VocabularyModel model(env);
    model.select(run);
    model.delete_(go);
    EXPECT_THAT(lemmasOf(model), ElementsAre("run"));
    EXPECT_EQ(model.encounters().value().size(), 1U);
    spoil("UPDATE word SET lemma = 'other' WHERE lemma = 'run'");
    model.delete_(run);
    EXPECT_THAT(lemmasOf(model), ElementsAre("other")) << "its id is another word's by now";
    EXPECT_FALSE(model.selection().value());
    EXPECT_THAT(model.encounters().value(), IsEmpty());
}

TEST_F(BrowserTest, aBookThatFailsReadsAsEmptyAndLosesNothing) {
    VocabularyModel model(env);
    model.select(run);
    spoil("CREATE TRIGGER hold BEFORE DELETE ON word BEGIN SELECT RAISE(ABORT, 'held'); END");
    model.delete_(run);
    EXPECT_THAT(lemmasOf(model), ElementsAre("go", "run"));
    spoil("ALTER TABLE encounter RENAME TO gone");
    model.reload();
    EXPECT_THAT(model.items().value(), IsEmpty());
    model.select(go);
    EXPECT_THAT(model.encounters().value(), IsEmpty());
    spoil("ALTER TABLE gone RENAME TO encounter");
    model.reload();
    EXPECT_THAT(lemmasOf(model), ElementsAre("go", "run"));
    queue.runAll();
    EXPECT_TRUE(env.bookTrouble().value());
}

class BrowserViewTest : public BrowserTest {
protected:
    void open() {
        queue.runAll();
        model = std::make_shared<VocabularyModel>(env);
        view = std::make_unique<VocabularyView>(
            model,
            WordActions{[this](const std::string& word) { calls.push_back("video " + word); },
                        [this](const std::string& url) { calls.push_back(url); },
                        [this] { calls.emplace_back("close"); }});
        view->show();
        test::settle();
    }

    QTableView& table() { return *view->findChild<QTableView*>(); }

    QLineEdit& field() { return *view->findChild<QLineEdit*>(); }

    Words rowTexts() {
        test::settle();
        Words texts;
        for (int row = 0; row < table().model()->rowCount(); ++row) {
            std::string text;
            for (int column = 0; column < table().model()->columnCount(); ++column)
                text += table().model()->index(row, column).data().toString().toStdString() + '|';
            texts.push_back(text);
        }
        return texts;
    }

    std::shared_ptr<VocabularyModel> model;
    std::unique_ptr<VocabularyView> view;
    std::vector<std::string> calls;
};

TEST_F(BrowserViewTest, aChosenWordIsShownWithAllItsSentences) {
    open();
    EXPECT_THAT(rowTexts(), ElementsAre("go||1 次|现在|", "run|n. 跑|1 次|现在|"));
    EXPECT_THAT(textsOf(*view), AllOf(Contains("选择一个单词查看详情"), Contains("2 个单词"),
                                      Contains("2 个待复习"), Not(Contains(HasSubstr("找到")))));
    table().selectRow(1);
    EXPECT_THAT(textsOf(*view),
                AllOf(Contains("run"), Contains("/rʌn/"), Contains("n. 跑"),
                      Contains("1 次 · 下次：现在"), Contains("遇到它的原句"),
                      Contains("He ran <far>."), Contains("跑了"), Contains("从生词本删除")));
    buttonOf(*view, "Firefox · example.com").click();
    buttonOf(*view, "视频例句").click();
    EXPECT_THAT(calls, ElementsAre("https://www.example.com/a", "video run"));
    for (int i = 0; i < 70; ++i)
        test::addWord(env.store(), "run", "Sentence " + std::to_string(i) + '.', test::day(0.6));
    model->reload();
    EXPECT_THAT(textsOf(*view), Not(Contains("He ran <far>.")));
    buttonOf(*view, "再显示 30 句（还有 41 句）").click();
    buttonOf(*view, "再显示 11 句（还有 11 句）").click();
    EXPECT_THAT(textsOf(*view), Contains("He ran <far>."));
}

TEST_F(BrowserViewTest, keysThatAreTypedFastAreOneSearch) {
    open();
    int searches = 0;
    const Subscription counting =
        model->search().observe([&searches](const std::string&) { ++searches; });
    for (const char* const letter : {"f", "a", "r"})
        pressKey(field(), letter[0], letter);
    EXPECT_EQ(searches, 0) << "the characters are painted first";
    EXPECT_THAT(rowTexts(), ElementsAre(StartsWith("run|")));
    EXPECT_EQ(searches, 1);
    EXPECT_THAT(textsOf(*view), Contains("找到 1 个"));
    pressKey(field(), Qt::Key_X, "x");
    EXPECT_THAT(textsOf(*view), Contains("没有找到匹配的单词"));
    pressKey(field(), Qt::Key_Escape);
    view->findChild<QLineEdit*>()->clear();
    EXPECT_EQ(rowTexts().size(), 2U);
}

TEST_F(BrowserViewTest, theChosenRowIsCopiedAndDeletedWithTheKeyboard) {
    test::addWord(env.store(), "give", {}, test::day(0.6));
    open();
    pressKey(field(), Qt::Key_Down);
    pressKey(table(), Qt::Key_Down);
    pressKey(table(), Qt::Key_Down);
    EXPECT_EQ(model->selection().value(), run);
    QGuiApplication::clipboard()->clear();
    pressKey(table(), Qt::Key_C, "\x03", Qt::ControlModifier);
    EXPECT_EQ(QGuiApplication::clipboard()->text(), "run\t/rʌn/\tn. 跑\t1 次\t现在");
    pressKey(table(), Qt::Key_Up);
    pressKey(table(), Qt::Key_Delete);
    pressKey(table(), Qt::Key_Delete);
    EXPECT_THAT(rowTexts(), ElementsAre(StartsWith("give|"), StartsWith("run|")))
        << "the second press deletes nothing";
    pressKey(table(), Qt::Key_Down);
    EXPECT_EQ(model->selection().value(), run) << "the next";
}

TEST_F(BrowserViewTest, wordsSavedMeanwhileAppearByThemselvesAndAnEmptyBookSaysWhatToDo) {
    env.store().delete_(run);
    env.store().delete_(go);
    open();
    EXPECT_THAT(textsOf(*view), AllOf(Contains("生词本还是空的"),
                                      Contains("在任意 App 里选中单词，按⌥D（Alt+D）")));
    test::addWord(env.store(), "give");
    EXPECT_TRUE(runUntil([&] {
        QApplication::processEvents();
        return table().model()->rowCount() == 1;
    }));
    table().selectRow(0);
    table().setFocus();
    test::addWord(env.store(), "mouse", {}, test::day(2));
    EXPECT_TRUE(runUntil([&] {
        QApplication::processEvents();
        return table().model()->rowCount() == 2;
    }));
    EXPECT_EQ(table().currentIndex().row(), 1) << "the choice stays with its word";
}

TEST_F(BrowserViewTest, theWordsShownAreExportedOrTheUserIsToldWhyNot) {
    open();
    model->setSearch("ran");
    std::vector<std::pair<std::string, bool>> outcomes;
    TableExport tableExport(env.tasks(), *view);
    for (const std::string& path : {directory.file("words.csv"), directory.file("no/words.tsv")}) {
        tableExport.write(model->items().value(),
                          path.ends_with("csv") ? TableFormat::csv : TableFormat::tsv, path,
                          [&](const QString& message, bool isWritten) {
                              outcomes.emplace_back(message.toStdString(), isWritten);
                          });
        const std::size_t before = outcomes.size();
        ASSERT_TRUE(runUntil([&] { return outcomes.size() > before; }));
    }
    EXPECT_THAT(outcomes[0].first, StartsWith("已把 1 个单词导出到 "));
    EXPECT_FALSE(outcomes[1].second);
    EXPECT_THAT(outcomes[1].first, Not(IsEmpty()));
    QFile written(QString::fromStdString(directory.file("words.csv")));
    ASSERT_TRUE(written.open(QIODevice::ReadOnly));
    EXPECT_THAT(written.readAll().toStdString(), HasSubstr("\r\nrun,rʌn,n. 跑,1,"));
}

} // namespace
} // namespace tavik
