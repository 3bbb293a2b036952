#include "Learning/FSRSScheduler.h"
#include "Learning/FixedIntervalScheduler.h"
#include "Support/Book.h"
#include "Vocabulary/VocabularySchema.h"

#include <gmock/gmock.h>

namespace tavik {
namespace {

using test::addWord;
using test::day;
using testing::ElementsAre;

class VocabularyStoreTest : public test::BookTest {
protected:
    std::vector<std::string> lemmas(const std::vector<VocabItem>& items) {
        std::vector<std::string> result;
        for (const VocabItem& item : items)
            result.push_back(item.word.lemma);
        return result;
    }

    /// The first row of a query on the file, by another connection.
    SQLiteDB::Row row(const std::string& sql) { return SQLiteDB(path, true).query(sql).front(); }

    void change(const std::string& sql) { SQLiteDB(path, false).execute(sql); }

    VocabularyStore book{path};
    const FSRSScheduler scheduler = FSRSScheduler::standard(0.9);
};

TEST_F(VocabularyStoreTest, aFreshFileGetsTheSchemaAndAKnownOneIsLeftAlone) {
    EXPECT_EQ(row("PRAGMA user_version").int_("user_version"), 1);
    const auto names =
        row("SELECT group_concat(name) AS n FROM (SELECT name FROM sqlite_schema WHERE name NOT "
            "LIKE 'sqlite_%' ORDER BY name)");
    EXPECT_EQ(names.text("n"),
              "card,card_due,encounter,encounter_word,explanation_cache,review_log,word");
    const std::string other = directory.file("other.sqlite");
    SQLiteDB(other, false).execute("PRAGMA user_version = 1");
    EXPECT_NO_THROW(VocabularyStore{other});
    EXPECT_EQ(SQLiteDB(other, true).query("SELECT * FROM sqlite_schema").size(), 0U);
}

TEST_F(VocabularyStoreTest, aSavedWordHasItsEntrySentenceAndACardDueAtOnce) {
    DictEntry entry;
    entry.word = "Run";
    entry.phonetic = "rʌn";
    entry.definitions = {"move fast"};
    const SourceInfo source{"Firefox", "org.mozilla.firefox", "https://www.example.com/a"};
    const auto added =
        book.add("run", "Run", entry, "running", "He was running.", "跑", source, day(0));
    EXPECT_TRUE(added.isNewWord);
    const auto item = book.item(added.wordID);
    EXPECT_EQ(item->word, (Word{added.wordID, "run", "Run", "rʌn", "move fast", day(0)}));
    EXPECT_EQ(item->card, Card::new_(added.wordID, day(0)));
    EXPECT_EQ(item->encounterCount, 1);
    EXPECT_EQ(item->latest, (Encounter{item->latest->id, added.wordID, "running", "He was running.",
                                       "跑", source, day(0)}));
    EXPECT_EQ(book.dueCount(day(0)), 1);
    EXPECT_EQ(book.dueCount(day(-1)), 0);
    EXPECT_EQ(book.wordIDForLemma("RUN"), added.wordID);
    entry.translations = {"跑", "奔"};
    EXPECT_EQ(book.item(book.add("go", "go", entry, "go", {}, {}, {}, day(0)).wordID)->word.brief,
              "跑");
}

TEST_F(VocabularyStoreTest, theSameSightingIsKeptOnceAndTheWordKeepsItsCard) {
    const auto first = addWord(book, "run");
    book.review(first.wordID, Rating::good, scheduler, day(0));
    const Card reviewed = *book.card(first.wordID);
    EXPECT_EQ(addWord(book, "Run", "", day(1)), (VocabularyStore::AddResult{first.wordID, false}));
    EXPECT_EQ(book.item(first.wordID)->encounterCount, 1) << "no sentence and an empty one are one";
    addWord(book, "run", "I run.", day(2));
    addWord(book, "run", "You run.", day(3));
    addWord(book, "run", "I run.", day(4));
    const auto encounters = book.encounters(first.wordID);
    ASSERT_EQ(encounters.size(), 3U);
    EXPECT_EQ(encounters[0].sentence, "You run.");
    EXPECT_EQ(encounters[1].seenAt, day(2)) << "the known sighting is not touched";
    EXPECT_EQ(encounters[2].sentence, std::nullopt);
    EXPECT_EQ(*book.card(first.wordID), reviewed);
    EXPECT_EQ(book.wordCount(), 1);
}

TEST_F(VocabularyStoreTest, aReviewStoresTheNewCardAndLogsTheAnswer) {
    const auto id = addWord(book, "run").wordID;
    const Card first = book.review(id, Rating::good, scheduler, day(0));
    EXPECT_EQ(book.card(id), first);
    const Card second = book.review(id, Rating::again, FixedIntervalScheduler(), day(3.5));
    EXPECT_EQ(book.card(id), second);
    const auto log = row("SELECT * FROM review_log ORDER BY id DESC LIMIT 1");
    EXPECT_EQ(log.int_("rating"), 1);
    EXPECT_EQ(log.text("state_before"), "review");
    EXPECT_EQ(log.double_("elapsed_days"), 3.5);
    EXPECT_EQ(log.double_("scheduled_days"), 0);
    EXPECT_EQ(book.reviewCount(day(0)), 2);
    EXPECT_EQ(book.reviewCount(day(1)), 1);
    try {
        book.review(99, Rating::good, scheduler, day(0));
        FAIL();
    } catch (const SQLiteDB::Error& error) {
        EXPECT_STREQ(error.what(), "SQLite step failed: no card for word 99");
    }
    EXPECT_EQ(book.reviewCount(day(0)), 2);
}

TEST_F(VocabularyStoreTest, searchLooksAtWordsGlossesAndSentences) {
    addWord(book, "alpha", "The ubiquitous phone.", day(0));
    addWord(book, "ubiquity", std::nullopt, day(1));
    DictEntry entry;
    entry.translations = {"普遍存在的"};
    book.add("gamma", "Gamma", entry, "gamma", {}, {}, {}, day(2));
    EXPECT_THAT(lemmas(book.items(" \t\u3000")), ElementsAre("gamma", "ubiquity", "alpha"));
    EXPECT_THAT(lemmas(book.items("  UBIQ ")), ElementsAre("ubiquity", "alpha"));
    EXPECT_THAT(lemmas(book.items("普遍")), ElementsAre("gamma"));
    EXPECT_THAT(lemmas(book.items("GA_MA")), ElementsAre("gamma"));
    EXPECT_THAT(lemmas(book.items("nothing'; DROP TABLE word; --")), ElementsAre());
    EXPECT_EQ(book.wordCount(), 3);
}

TEST_F(VocabularyStoreTest, dueWordsComeMostOverdueFirstUpToTheLimit) {
    addWord(book, "late", {}, day(-2));
    addWord(book, "now", {}, day(0));
    addWord(book, "later", {}, day(-1));
    addWord(book, "tomorrow", {}, day(1));
    EXPECT_THAT(lemmas(book.dueItems(day(0), 500)), ElementsAre("late", "later", "now"));
    EXPECT_THAT(lemmas(book.dueItems(day(0), 1)), ElementsAre("late"));
    EXPECT_THAT(lemmas(book.dueItems(day(0), 0)), ElementsAre());
}

TEST_F(VocabularyStoreTest, aDeletedWordTakesEverythingButTheExplanationsAlong) {
    const auto id = addWord(book, "run", "I run.").wordID;
    book.review(id, Rating::good, scheduler, day(0));
    book.cacheExplanation({"跑", "我跑。", {}}, "key", day(0));
    book.delete_(id);
    EXPECT_TRUE(book.items("").empty());
    EXPECT_EQ(book.wordCount() + book.dueCount(day(9)) + book.reviewCount(day(-9)), 0);
    EXPECT_TRUE(book.encounters(id).empty());
    EXPECT_TRUE(book.cachedExplanation("key"));
}

TEST_F(VocabularyStoreTest, onChangeIsCalledOncePerChangeAfterTheCommitAndUnlocked) {
    int calls = 0;
    std::int64_t seen = -1;
    book.setOnChange([&] {
        ++calls;
        // Another connection sees the change, and nothing is locked.
        seen = *row("SELECT count(*) AS n FROM word").int_("n");
        change("PRAGMA user_version = 1");
    });
    const auto id = addWord(book, "run").wordID;
    EXPECT_EQ(calls, 1);
    EXPECT_EQ(seen, 1);
    book.review(id, Rating::good, scheduler, day(0));
    EXPECT_EQ(calls, 2);
    EXPECT_THROW(book.review(id + 1, Rating::good, scheduler, day(0)), SQLiteDB::Error);
    book.cacheExplanation({}, "key", day(0));
    EXPECT_EQ(calls, 2);
    book.delete_(id + 1);
    EXPECT_EQ(calls, 3) << "also for a word that is not there";
    book.setOnChange(nullptr);
    book.delete_(id);
}

TEST_F(VocabularyStoreTest, theCacheKeepsTheLastExplanationAndRefusesBrokenOnes) {
    const ContextExplanation explanation{"意思", "译文", {{"A b.", "甲乙。"}}};
    book.cacheExplanation({"旧", "", {}}, "key", day(0));
    book.cacheExplanation(explanation, "key", day(1));
    EXPECT_EQ(book.cachedExplanation("key"), explanation);
    EXPECT_EQ(book.cachedExplanation("other"), std::nullopt);
    book.cacheExplanation({"\xFF", "", {}}, "key", day(2));
    EXPECT_EQ(book.cachedExplanation("key"), explanation) << "what is no UTF-8 is not stored";
    for (const std::string json : {"'{'", "'[]'", "x'00'", R"('{"meaningInContext":"a"}')",
                                   R"('{"meaningInContext":1,"translation":"","examples":[]}')"}) {
        change("UPDATE explanation_cache SET json = " + json);
        EXPECT_EQ(book.cachedExplanation("key"), std::nullopt) << json;
    }
}

TEST_F(VocabularyStoreTest, strangeValuesInTheFileTakeTheirDefaults) {
    const auto id = addWord(book, "run").wordID;
    change("UPDATE card SET state = 'asleep', due = 9e999, stability = -9e999, difficulty = 'x', "
           "reps = 1e300, lapses = 2.9, last_review = 'never'; UPDATE word SET created_at = 1e300, "
           "headword = 5; UPDATE encounter SET seen_at = 'then', selection = x'0041'");
    const Date before = currentDate();
    const auto item = book.items("").front();
    EXPECT_EQ(item.card.state, CardState::new_);
    EXPECT_GE(item.card.due, before);
    EXPECT_EQ(item.card.stability, 0);
    EXPECT_EQ(item.card.difficulty, 0);
    EXPECT_EQ(item.card.reps, 0);
    EXPECT_EQ(item.card.lapses, 2);
    EXPECT_EQ(item.card.lastReview, std::nullopt);
    EXPECT_GE(item.word.createdAt, before);
    EXPECT_GE(item.latest->seenAt, before);
    EXPECT_NO_THROW(book.review(id, Rating::easy, scheduler, day(0)));
}

TEST(SourceLabel, isTheApplicationAndTheSiteOrFile) {
    const auto label = [](std::optional<std::string> app, std::optional<std::string> url) {
        return SourceInfo{std::move(app), "org.example", std::move(url)}.label();
    };
    EXPECT_EQ(label("Firefox", "https://www.example.com:8080/a?b#c"), "Firefox · example.com");
    EXPECT_EQ(label({}, "https://me:pw@news.www.example.com/"), "news.example.com");
    EXPECT_EQ(label({}, "file:///home/x/My%20Book.pdf"), "My Book.pdf");
    EXPECT_EQ(label("Okular", "file:///home/x/笔 记/"), "Okular · 笔 记");
    EXPECT_EQ(label({}, "file:///a%FFb"), "a%FFb") << "undecodable stays as it is";
    EXPECT_EQ(label("", "https://例子.cn/路径"), "例子.cn");
    for (const char* const odd : {"/a[1]", "/x|y?q={b}^`", "/100%", "/a\\b\"<c>", "?a=%zz#[x]"})
        EXPECT_EQ(label({}, "https://a.com" + std::string(odd)), "a.com") << odd;
    EXPECT_EQ(label({}, "http://[::1]:8080/x"), "::1");
    EXPECT_EQ(label("Mail", "mailto:a@b.c"), "Mail");
    EXPECT_EQ(label("App", "http://[::1"), "App");
    EXPECT_EQ(label({}, {}), "");
}

} // namespace
} // namespace tavik
