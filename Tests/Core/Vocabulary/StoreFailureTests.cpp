#include "Learning/FSRSScheduler.h"
#include "Support/Book.h"
#include "Support/ChildProcess.h"
#include "Vocabulary/BookFailure.h"
#include "Vocabulary/EmptiedBook.h"

#include <gmock/gmock.h>

#include <filesystem>
#include <functional>
#include <sstream>
#include <thread>

namespace tavik {
namespace {

namespace fs = std::filesystem;
using test::addWord;
using test::day;
using testing::AllOf;
using testing::AnyOf;
using testing::HasSubstr;
using testing::Not;

const FSRSScheduler scheduler = FSRSScheduler::standard(0.9);

/// What a call did: "ok", or the error it threw.
std::string outcome(const std::function<void()>& call) {
    try {
        call();
        return "ok";
    } catch (const SQLiteDB::Error& error) {
        return error.what();
    }
}

/// An operation that changes the book and may fail.
struct Write {
    std::string name;
    std::function<void(VocabularyStore&)> call;
};

std::vector<Write> writes() {
    return {
        {"add", [](VocabularyStore& book) { addWord(book, "new", "A new word."); }},
        {"add sentence", [](VocabularyStore& book) { addWord(book, "run", "Run again."); }},
        {"review", [](VocabularyStore& book) { book.review(1, Rating::good, scheduler, day(1)); }},
        {"delete", [](VocabularyStore& book) { book.delete_(1); }}};
}

/// What everything that reads the book gives: its result, or the error it threw.
std::string readings(const VocabularyStore& book) {
    std::ostringstream text;
    const auto list = [&](const char* name, const std::function<std::size_t()>& size) {
        text << ' ' << name << '=';
        text << outcome([&] { text << size() << ' '; });
    };
    list("items", [&] { return book.items("").size(); });
    list("search", [&] { return book.items("zzz").size(); });
    list("due", [&] { return book.dueItems(day(99), 9).size(); });
    list("item", [&] { return book.item(1).has_value() ? 1U : 0U; });
    list("encounters", [&] { return book.encounters(1).size(); });
    list("card", [&] { return book.card(1).has_value() ? 1U : 0U; });
    text << " counts=" << book.wordCount() << book.dueCount(day(99)) << book.reviewCount(day(-9))
         << " lemma=" << book.wordIDForLemma("run").value_or(0)
         << " cache=" << book.cachedExplanation("key").has_value();
    return text.str();
}

constexpr const char* nothingReadable =
    " items=%1 search=%1 due=%1 item=%1 encounters=%1 card=%1 counts=000 lemma=0 cache=0";
constexpr const char* allReadable = " items=1 ok search=0 ok due=1 ok item=1 ok encounters=1 ok "
                                    "card=1 ok counts=111 lemma=1 cache=1";

class StoreFailureTest : public test::BookTest {
protected:
    StoreFailureTest() {
        VocabularyStore book(path);
        addWord(book, "run", "I run.");
        book.review(1, Rating::hard, scheduler, day(0));
        book.cacheExplanation({"跑", "我跑。", {}}, "key", day(0));
        before = test::dump(path);
    }

    std::string before;
};

TEST_F(StoreFailureTest, whileAnotherProgramHoldsTheLockReadersGoOnAndWritersFailUnchanged) {
    SQLiteDB other(path, false);
    other.execute("BEGIN IMMEDIATE; UPDATE word SET brief = 'half'");
    std::vector<std::jthread> threads;
    for (const Write& write : writes())
        threads.emplace_back([&, write] {
            VocabularyStore book(path);
            int changes = 0;
            book.setOnChange([&] { ++changes; });
            EXPECT_EQ(readings(book), allReadable);
            EXPECT_THAT(outcome([&] { write.call(book); }), HasSubstr("database is locked"))
                << write.name;
            EXPECT_EQ(changes, 0) << write.name;
        });
    threads.emplace_back([&] {
        VocabularyStore book(path);
        EXPECT_NO_THROW(book.cacheExplanation({}, "key", day(1)));
    });
    threads.clear();
    other.execute("ROLLBACK");
    EXPECT_EQ(test::dump(path), before);
    VocabularyStore book(path);
    for (const Write& write : writes())
        EXPECT_EQ(outcome([&] { write.call(book); }), "ok") << "once the lock is gone";
}

TEST_F(StoreFailureTest, aReadOnlyBookIsReadButNotWritten) {
    fs::permissions(path, fs::perms::owner_read | fs::perms::others_read);
    fs::permissions(directory.path(), fs::perms::all);
    const std::string told = test::inChild({.unprivileged = true}, [&] {
        VocabularyStore book(path);
        std::string text = readings(book);
        for (const Write& write : writes())
            text += '\n' + outcome([&] { write.call(book); });
        book.cacheExplanation({}, "key", day(1));
        return text;
    });
    EXPECT_THAT(told, HasSubstr(allReadable));
    EXPECT_THAT(told, AllOf(HasSubstr("readonly database"), Not(HasSubstr("\nok"))));
    fs::permissions(directory.path(), fs::perms::owner_all | fs::perms::others_read);
    EXPECT_THAT(test::inChild({.unprivileged = true},
                              [&] { return outcome([&] { VocabularyStore{path}; }); }),
                HasSubstr("unable to open database file"));
    fs::permissions(directory.path(), fs::perms::all);
    EXPECT_EQ(test::dump(path), before);
}

TEST_F(StoreFailureTest, onAFullDiskNothingIsWrittenByHalves) {
    // Room for the log's header, for none of its pages, then for the first of several.
    for (const std::size_t room : {100UL, 4000UL, 9000UL}) {
        const std::string told = test::inChild({.maxFileSize = room}, [&] {
            VocabularyStore book(path);
            std::string text = readings(book);
            for (const Write& write : writes())
                text += '\n' + outcome([&] { write.call(book); });
            return text;
        });
        EXPECT_THAT(told, Not(HasSubstr("\nok"))) << room;
        EXPECT_EQ(test::dump(path), before) << room;
    }
    const std::string fresh = directory.file("fresh.sqlite");
    EXPECT_NE(test::inChild({.maxFileSize = 5000},
                            [&] { return outcome([&] { VocabularyStore{fresh}; }); }),
              "ok");
}

TEST_F(StoreFailureTest, aDamagedBookIsAnErrorOrADefaultAndIsNotMadeWorse) {
    const std::string whole = test::readFile(path);
    // Every page but the first, which holds the schema.
    const std::string damaged = whole.substr(0, 4096) + std::string(whole.size() - 4096, '\xA5');
    test::writeFile(path, damaged);
    {
        VocabularyStore book(path);
        std::string expected = nothingReadable;
        const std::string error = "SQLite step failed: database disk image is malformed";
        for (std::size_t at = 0; (at = expected.find("%1")) != std::string::npos;)
            expected.replace(at, 2, error);
        EXPECT_EQ(readings(book), expected);
        for (const Write& write : writes())
            EXPECT_THAT(outcome([&] { write.call(book); }), HasSubstr("malformed")) << write.name;
        EXPECT_NO_THROW(book.cacheExplanation({}, "key", day(1)));
    }
    EXPECT_TRUE(test::readFile(path) == damaged);
    for (const std::string& junk : {std::string(9000, 'x'), whole.substr(0, 50)}) {
        test::writeFile(path, junk);
        EXPECT_THAT(outcome([&] { VocabularyStore{path}; }),
                    AnyOf(HasSubstr("not a database"), HasSubstr("malformed")));
        EXPECT_TRUE(test::readFile(path) == junk);
    }
}

TEST_F(StoreFailureTest, anEmptiedFileBesideAFullLogIsNotOpened) {
    const std::string log = path + "-wal";
    test::writeFile(path, "");
    EXPECT_FALSE(isEmptiedBook(path)) << "without a log it is just new";
    test::writeFile(log, "the last words");
    try {
        VocabularyStore book(path);
        FAIL();
    } catch (const EmptiedBookError& error) {
        EXPECT_THAT(error.what(), HasSubstr("restore"));
    }
    std::filesystem::create_symlink(path, directory.file("link"));
    EXPECT_THROW(VocabularyStore{directory.file("link")}, EmptiedBookError);
    std::filesystem::remove(path);
    EXPECT_THROW(VocabularyStore{path}, EmptiedBookError) << "a missing file is as bad";
    EXPECT_THROW(VocabularyStore{directory.file("link")}, EmptiedBookError) << "also behind a link";
    EXPECT_EQ(test::readFile(log), "the last words");
    EXPECT_FALSE(isEmptiedBook(directory.file("none")));
}

TEST_F(StoreFailureTest, aHalfCreatedFileIsReportedAndLeftAsItIs) {
    const std::string half = directory.file("half.sqlite");
    SQLiteDB(half, false).execute("CREATE TABLE word(id INTEGER PRIMARY KEY)");
    EXPECT_THAT(outcome([&] { VocabularyStore{half}; }), HasSubstr("table word already exists"));
    EXPECT_EQ(SQLiteDB(half, true).query("SELECT * FROM sqlite_schema").size(), 1U);
}

TEST(BookFailure, tellsTheUserWhatToDo) {
    using Cause = SQLiteDB::Error::Cause;
    const std::vector<std::pair<Cause, std::string>> cases{
        {Cause::busy, "稍后再试"}, {Cause::readOnly, "权限"},   {Cause::cannotOpen, "权限"},
        {Cause::full, "腾出空间"}, {Cause::damaged, "restore"}, {Cause::inputOutput, "磁盘"},
        {Cause::other, "出错。"}};
    for (const auto& [cause, advice] : cases)
        EXPECT_THAT(bookFailure("/a/b", SQLiteDB::Error::step("because", cause)),
                    AllOf(HasSubstr("/a/b"), HasSubstr(advice), HasSubstr("because")));
}

} // namespace
} // namespace tavik
