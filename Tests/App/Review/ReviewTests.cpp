#include "App/Support/FakeDesktop.h"
#include "App/Support/WindowTexts.h"
#include "Support/SampleDictionary.h"
#include "UI/Review/ReviewView.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <QLineEdit>

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

class ReviewTest : public testing::Test, protected test::FakeDesktop {
protected:
    std::string sampleDictionary() const {
        std::string path = directory.file("dict.sqlite");
        test::makeSampleDictionary(path);
        return path;
    }

    std::int64_t add(const std::string& word, const std::string& sentence = "", double at = 0) {
        return test::addWord(env.store(), word,
                             sentence.empty() ? std::nullopt : std::optional(sentence),
                             test::day(at))
            .wordID;
    }

    void spoil(const char* statement) {
        SQLiteDB(data + "/" + AppEnvironment::bookName, false).execute(statement);
    }

    static std::vector<std::string> lemmasOf(const ReviewModel& model) {
        std::vector<std::string> lemmas;
        for (const VocabItem& item : model.queue().value())
            lemmas.push_back(item.word.lemma);
        return lemmas;
    }

    std::string data = directory.file("data");
    AppEnvironment env{data, settings, sampleDictionary(), environmentPorts()};
};

TEST_F(ReviewTest, aSessionGoesThroughAllWordsAndBringsBackTheForgotten) {
    const auto first = add("run", "", 0);
    add("go", "", 0.1);
    add("give", "", 0.2);
    ReviewModel model(env);
    EXPECT_EQ(model.initialCount(), 3);
    model.rate(Rating::again);
    EXPECT_THAT(lemmasOf(model), ElementsAre("run", "go", "give", "run"));
    EXPECT_FALSE(model.isRepetition());
    model.rate(Rating::good);
    model.rate(Rating::easy);
    ASSERT_NE(model.current(), nullptr);
    EXPECT_EQ(model.current()->word.id, first);
    EXPECT_EQ(model.current()->card.reps, 1) << "with its new card";
    EXPECT_TRUE(model.isRepetition());
    model.rate(Rating::good);
    EXPECT_EQ(model.current(), nullptr);
    EXPECT_THAT(model.previews(), IsEmpty());
    model.rate(Rating::good);
    EXPECT_EQ(model.reviewedThisSession().value(), 4);
    EXPECT_EQ(env.store().reviewCount(test::bookTime), 4);
    add("mouse", "", 0.3);
    model.reload();
    EXPECT_EQ(model.initialCount(), 5) << "with the ratings given";
    EXPECT_EQ(model.index().value(), 0);
}

TEST_F(ReviewTest, everyReviewShowsTheNextSentenceThatThereIs) {
    add("run", "First run.", 0);
    add("run", "", 0.1);
    add("run", "Second run.", 0.2);
    const auto sentence = [this] {
        return ReviewModel(env).encounter().value()->sentence.value_or("");
    };
    EXPECT_EQ(sentence(), "Second run.") << "the newest";
    for (const char* const next : {"First run.", "Second run."}) {
        env.store().review(1, Rating::again, *settings.scheduler(), now);
        now += std::chrono::hours(24);
        EXPECT_EQ(sentence(), next);
    }
    env.store().delete_(1);
    add("go");
    EXPECT_FALSE(ReviewModel(env).encounter().value()->sentence);
}

TEST_F(ReviewTest, meaningsComeFromTheDictionaryElseFromTheBook) {
    add("run", "", 0);
    DictEntry entry;
    entry.translations = {"n. 自己记的"};
    env.store().add("zzyzx", "zzyzx", entry, "zzyzx", {}, {}, {}, test::day(0.1));
    ReviewModel model(env);
    EXPECT_THAT(model.definitions().value(), ElementsAre("n. 跑", "v. 奔跑"));
    EXPECT_EQ(model.examples().value().size(), 2U);
    model.rate(Rating::good);
    EXPECT_THAT(model.definitions().value(), ElementsAre("n. 自己记的"));
    EXPECT_THAT(model.examples().value(), IsEmpty());
}

TEST_F(ReviewTest, previewsFollowTheSettings) {
    add("run");
    ReviewModel model(env);
    EXPECT_EQ(model.previews()[Rating::good], "3 天后");
    settings.schedulerKind.set(SchedulerKind::fixed);
    EXPECT_EQ(model.previews()[Rating::good], "1 天后");
    EXPECT_EQ(model.previews().size(), 4U);
}

TEST_F(ReviewTest, whatFailsIsPassedOverAndWhatWasWrittenStays) {
    const auto first = add("run", "A run.", 0);
    add("go", "", 0.1);
    add("give", "", 0.2);
    ReviewModel model(env);
    model.rate(Rating::good);
    spoil("ALTER TABLE review_log RENAME TO gone");
    model.rate(Rating::again);
    EXPECT_EQ(model.reviewedThisSession().value(), 2);
    EXPECT_EQ(model.current()->word.lemma, "give");
    spoil("ALTER TABLE gone RENAME TO review_log");
    EXPECT_EQ(env.store().reviewCount(test::bookTime), 1);
    EXPECT_EQ(env.store().card(first)->reps, 1);
    EXPECT_EQ(env.store().card(first + 1)->reps, 0) << "not by halves";
    spoil("DROP TABLE encounter");
    model.rate(Rating::good);
    model.reload();
    EXPECT_EQ(model.current(), nullptr);
    queue.runAll();
    EXPECT_TRUE(env.bookTrouble().value()) << "the environment tells the user";
}

TEST_F(ReviewTest, aWordThatIsNotTheSameAnyMoreIsNotRated) {
    add("run", "", 0);
    add("go", "", 0.1);
    ReviewModel model(env);
    env.store().delete_(1);
    model.rate(Rating::again);
    EXPECT_THAT(lemmasOf(model), ElementsAre("run", "go"));
    spoil("UPDATE word SET lemma = 'other' WHERE id = 2");
    model.rate(Rating::easy);
    EXPECT_EQ(env.store().reviewCount(test::bookTime), 0);
}

TEST_F(ReviewTest, aSessionHasFiveHundredWordsAtMost) {
    spoil("WITH RECURSIVE n(i) AS (SELECT 1 UNION ALL SELECT i + 1 FROM n WHERE i < 700)"
          " INSERT INTO word SELECT i, 'w' || i, 'w', '', '', 0 FROM n");
    spoil("INSERT INTO card SELECT id, 'new', 0, 0, 0, 0, 0, NULL FROM word");
    EXPECT_EQ(ReviewModel(env).initialCount(), 500);
}

class ReviewViewTest : public ReviewTest {
protected:
    void open() {
        model = std::make_shared<ReviewModel>(env);
        view = std::make_unique<ReviewView>(
            model,
            WordActions{[this](const std::string& word) { calls.push_back("video " + word); },
                        [this](const std::string& url) { calls.push_back(url); },
                        [this] { calls.emplace_back("close"); }});
        view->show();
        test::settle();
    }

    bool press(int key) { return pressKey(*view, key); }

    std::shared_ptr<ReviewModel> model;
    std::unique_ptr<ReviewView> view;
    std::vector<std::string> calls;
};

TEST_F(ReviewViewTest, theQuestionHidesWhatTheAnswerShows) {
    env.store().add("run", "run", {}, "running", "He was running <b>late</b>.", "迟到了",
                    {"Firefox", {}, "https://www.example.com/a"}, test::bookTime);
    open();
    EXPECT_THAT(textsOf(*view),
                AllOf(Contains("run"), Contains("He was running <b>late</b>."), Contains("0 / 1"),
                      Contains("先回想它的意思，再看答案"), Contains("显示答案（空格）"),
                      Contains("本次已复习 0"), Not(Contains(HasSubstr("奔跑"))),
                      Not(Contains(HasSubstr("迟到了")))));
    buttonOf(*view, "Firefox · example.com").click();
    buttonOf(*view, "朗读").click();
    buttonOf(*view, "视频例句").click();
    EXPECT_THAT(calls, ElementsAre("https://www.example.com/a", "video run"));
    EXPECT_THAT(speech.calls, Contains(HasSubstr("run")));
    buttonOf(*view, "显示答案（空格）").click();
    EXPECT_THAT(textsOf(*view), AllOf(Contains("n. 跑\nv. 奔跑"), Contains("在这句话里：迟到了"),
                                      Contains(HasSubstr("熊靠近时他不得不逃命。")),
                                      Contains("忘记"), Contains("太简单")));
    EXPECT_EQ(buttonOf(*view, "记得").accessibleName(), "记得，3 天后");
    settings.schedulerKind.set(SchedulerKind::fixed);
    test::settle();
    EXPECT_EQ(buttonOf(*view, "记得").accessibleName(), "记得，1 天后");
    buttonOf(*view, "太简单").click();
    EXPECT_THAT(textsOf(*view), AllOf(Contains("今天的复习完成了！"),
                                      Contains("本次复习了 1 次。明天按时提醒你。")));
}

TEST_F(ReviewViewTest, keysRevealAndRateInItsWindowOnly) {
    add("run", "", 0);
    add("go", "", 0.1);
    open();
    EXPECT_FALSE(press(Qt::Key_1)) << "no answer is shown yet";
    EXPECT_EQ(model->reviewedThisSession().value(), 0);
    QLineEdit other;
    other.show();
    pressKey(other, Qt::Key_Space, " ");
    EXPECT_EQ(other.text(), " ");
    EXPECT_FALSE(model->revealed().value());
    QWidget& button = buttonOf(*view, "朗读");
    EXPECT_TRUE(pressKey(button, Qt::Key_Space));
    EXPECT_TRUE(model->revealed().value()) << "whatever has the focus";
    EXPECT_THAT(speech.calls, IsEmpty());
    EXPECT_TRUE(press(Qt::Key_Space));
    for (const int key : {Qt::Key_0, Qt::Key_5, Qt::Key_A})
        EXPECT_FALSE(press(key));
    EXPECT_EQ(model->index().value(), 0);
    EXPECT_FALSE(pressKey(*view, Qt::Key_Exclam, "!", Qt::ShiftModifier));
    EXPECT_TRUE(pressKey(*view, Qt::Key_1, "1", Qt::ShiftModifier))
        << "as French keyboards have it";
    EXPECT_FALSE(press(Qt::Key_1)) << "a second press is not for the next word";
    for (int word = 0; word < 2; ++word) {
        press(Qt::Key_Space);
        press(Qt::Key_4);
    }
    EXPECT_EQ(model->current(), nullptr);
    EXPECT_EQ(env.store().card(2)->reps, 1);
    EXPECT_FALSE(press(Qt::Key_Space));
    EXPECT_THAT(textsOf(*view), Contains("本次复习了 3 次。明天按时提醒你。"));
    pressKey(buttonOf(*view, "关闭"), Qt::Key_Return);
    EXPECT_THAT(calls, ElementsAre("close"));
}

TEST_F(ReviewViewTest, withNothingDueItSaysSoAndFollowsTheTheme) {
    open();
    EXPECT_THAT(textsOf(*view),
                AllOf(Contains("现在没有需要复习的单词"), Not(Contains(HasSubstr("本次复习了")))));
    appearance.dark.set(true);
    test::settle();
    EXPECT_EQ(view->palette().color(QPalette::Window), theme(true).surface);
}

} // namespace
} // namespace tavik
