#include "Base/AsideFile.h"
#include "Learning/FSRSScheduler.h"
#include "Support/Book.h"
#include "Support/ChildProcess.h"
#include "Vocabulary/VocabularyBackup.h"

#include <gmock/gmock.h>
#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <atomic>
#include <csignal>
#include <filesystem>
#include <set>
#include <thread>

namespace tavik {
namespace {

namespace fs = std::filesystem;
using test::addWord;
using test::day;
using testing::HasSubstr;

/// A program that has the book open while this object lives.
class OtherProgram {
public:
    explicit OtherProgram(const std::string& path) {
        std::array<int, 2> ends{};
        if (pipe(ends.data()) != 0) throw std::runtime_error("pipe failed");
        child = fork();
        if (child == 0) {
            SQLiteDB db(path, false);
            db.query("SELECT * FROM word");
            close(ends[1]);
            pause();
            _exit(0);
        }
        close(ends[1]);
        char byte = 0;
        // The end of the pipe, which only the child has open, tells that the book is open.
        while (read(ends[0], &byte, 1) > 0) {
        }
        close(ends[0]);
    }

    ~OtherProgram() {
        kill(child, SIGKILL);
        waitpid(child, nullptr, 0);
    }

    OtherProgram(const OtherProgram&) = delete;
    OtherProgram& operator=(const OtherProgram&) = delete;

private:
    pid_t child = -1;
};

class BackupTest : public test::BookTest {
protected:
    BackupTest() {
        VocabularyStore book(path);
        const auto id = addWord(book, "run", "I run.").wordID;
        addWord(book, "go");
        book.review(id, Rating::good, FSRSScheduler::standard(0.9), day(0));
        book.cacheExplanation({"跑", "", {}}, "key", day(0));
        backUpBook(book, path, backup, Overwrite::no);
        original = test::dump(path);
    }

    /// What `call` throws.
    static std::string failure(const std::function<void()>& call) {
        try {
            call();
        } catch (const BackupError& error) {
            return error.what();
        } catch (const FileError& error) {
            return error.what();
        }
        return "nothing";
    }

    std::set<std::string> files() {
        std::set<std::string> names;
        for (const auto& entry : fs::directory_iterator(directory.path()))
            names.insert(entry.path().filename());
        return names;
    }

    std::string backup = directory.file("backup.sqlite");
    std::string original;
};

TEST_F(BackupTest, aBackupHoldsEverythingAndComesBackWhileAnotherProgramHasTheBookOpen) {
    EXPECT_EQ(test::dump(backup), original);
    EXPECT_EQ(checkBook(backup), (BookCounts{2, 2, 1}));
    VocabularyStore other(path);
    addWord(other, "new", "Something new.");
    other.delete_(1);
    const std::string changed = test::dump(path);

    const auto [counts, kept] = restoreBook(backup, path, day(0));
    EXPECT_EQ(counts, (BookCounts{2, 2, 1}));
    EXPECT_EQ(test::dump(path), original);
    EXPECT_EQ(test::dump(kept.value().string()), changed) << "the book before stands aside";
    EXPECT_EQ(other.items("").size(), 2U) << "the open book has the restored words";
    EXPECT_TRUE(addWord(other, "later").isNewWord);
    EXPECT_EQ(VocabularyStore(path).wordCount(), 3);
    EXPECT_NE(restoreBook(backup, path, day(0)).kept, kept) << "nothing kept is overwritten";
}

TEST_F(BackupTest, aBackupTakenWhileAnotherThreadSavesIsOneMoment) {
    VocabularyStore book(path);
    std::atomic<bool> isDone = false;
    std::jthread writer([&] {
        VocabularyStore own(path);
        for (int i = 0; !isDone; ++i)
            addWord(own, std::to_string(i), "Sentence.");
    });
    for (int round = 0; round < 5; ++round) {
        const auto counts = backUpBook(book, path, backup, Overwrite::yes);
        EXPECT_EQ(counts.words, counts.encounters);
    }
    isDone = true;
}

TEST_F(BackupTest, aBackupNeverReplacesAFileUnaskedOrTheBookItself) {
    VocabularyStore book(path);
    const auto backUp = [&](const std::string& target, Overwrite overwrite) {
        return failure([&] { backUpBook(book, path, target, overwrite); });
    };
    EXPECT_THAT(backUp(backup, Overwrite::no), HasSubstr("已经存在"));
    fs::create_symlink(path, directory.file("link"));
    for (const std::string& own : {path, path + "-wal", directory.file("link")})
        EXPECT_THAT(backUp(own, Overwrite::yes), HasSubstr("就是生词本自己")) << own;
    test::writeFile(directory.file("used-wal"), "log");
    EXPECT_THAT(backUp(directory.file("used"), Overwrite::yes), HasSubstr("正被另一个程序使用"));
    EXPECT_THAT(backUp(directory.file("none/x"), Overwrite::no), HasSubstr("none"));
    EXPECT_THAT(backUp(directory.path(), Overwrite::yes), HasSubstr("不是普通文件"));
    EXPECT_EQ(test::dump(path), original);
    const std::string told = test::inChild({.maxFileSize = 9000}, [&] {
        return failure([&] { backUpBook(book, path, backup, Overwrite::yes); });
    });
    EXPECT_THAT(told, HasSubstr("磁盘空间"));
    EXPECT_EQ(test::dump(backup), original) << "the older backup is still there";
}

TEST_F(BackupTest, aBackupThatIsNotWholeIsRefusedAndTheBookStays) {
    const std::string whole = test::readFile(backup);
    const std::string bad = directory.file("bad.sqlite");
    const auto restore = [&] { return failure([&] { restoreBook(bad, path, day(0)); }); };
    EXPECT_THAT(restore(), HasSubstr("没有"));
    test::writeFile(bad, "");
    EXPECT_THAT(restore(), HasSubstr("不是 Tavik 的生词本"));
    test::writeFile(bad, whole.substr(0, whole.size() / 2));
    EXPECT_THAT(restore(), HasSubstr("损坏"));
    std::string torn = whole;
    constexpr std::size_t page = 4096;
    torn.replace(2 * page, page, std::string(page, '\xA5'));
    test::writeFile(bad, torn);
    EXPECT_THAT(restore(), HasSubstr("损坏"));
    test::writeFile(bad, whole);
    SQLiteDB(bad, false).execute("PRAGMA foreign_keys=OFF; DELETE FROM word WHERE id = 1");
    EXPECT_THAT(restore(), HasSubstr("损坏")) << "sentences without their word";
    test::writeFile(bad, whole);
    SQLiteDB(bad, false)
        .execute("DROP TABLE word; CREATE TABLE word(id INTEGER PRIMARY KEY, lemma, headword, "
                 "phonetic, brief, created_at); INSERT INTO word VALUES(1, 'a', 1, 2, 3, 4), (2, "
                 "'A', 1, 2, 3, 4)");
    EXPECT_THAT(restore(), HasSubstr("UNIQUE")) << "a backup brings no schema of its own";
    SQLiteDB(bad, false).execute("PRAGMA user_version = 2");
    EXPECT_THAT(restore(), HasSubstr("升级"));
    EXPECT_THAT(failure([&] { restoreBook(path, path, day(0)); }), HasSubstr("不必恢复"));
    EXPECT_EQ(test::dump(path), original);
    EXPECT_EQ(files().count("tavik.sqlite.tavik-part"), 0U);
}

TEST_F(BackupTest, aDamagedEmptiedOrMissingBookIsReplacedAndKeptAsItWas) {
    test::writeFile(path, std::string(5000, 'x'));
    const auto damaged = restoreBook(backup, path, day(1));
    EXPECT_EQ(test::readFile(damaged.kept.value()), std::string(5000, 'x'));
    EXPECT_EQ(test::dump(path), original);

    test::writeFile(path, "");
    test::writeFile(path + "-wal", "the last words");
    const auto emptied = restoreBook(backup, path, day(2));
    EXPECT_EQ(test::readFile(emptied.kept.value().string() + "-wal"), "the last words");
    EXPECT_EQ(test::dump(path), original);

    for (const char* const ending : {"", "-wal", "-shm"})
        fs::remove(path + ending);
    EXPECT_EQ(restoreBook(backup, path, day(3)).kept, std::nullopt);
    EXPECT_EQ(test::dump(path), original);
}

TEST_F(BackupTest, aRestoreThatCannotWriteChangesNothing) {
    const auto known = files();
    const std::string full = test::inChild(
        {.maxFileSize = 9000}, [&] { return failure([&] { restoreBook(backup, path, day(0)); }); });
    EXPECT_THAT(full, HasSubstr("磁盘空间"));
    SQLiteDB other(path, false);
    other.execute("BEGIN IMMEDIATE");
    EXPECT_THROW(restoreBook(backup, path, day(0)), SQLiteDB::Error);
    other.execute("ROLLBACK");
    EXPECT_EQ(test::dump(path), original);
    for (const std::string& name : files())
        EXPECT_TRUE(known.contains(name) || name.starts_with("tavik.sqlite-")) << name;
}

TEST_F(BackupTest, aLinkedBookIsRestoredWhereItReallyLies) {
    const std::string link = directory.file("link.sqlite");
    fs::create_symlink(path, link);
    test::writeFile(path, std::string(5000, 'x'));
    const auto restored = restoreBook(backup, link, day(1));
    EXPECT_EQ(test::readFile(restored.kept.value()), std::string(5000, 'x'));
    EXPECT_TRUE(fs::is_symlink(link));
    EXPECT_EQ(test::dump(link), original);
    EXPECT_THAT(failure([&] { requireOutsideBook(path, link); }), HasSubstr("就是生词本自己"));
}

TEST_F(BackupTest, aDamagedBookThatAnotherProgramHasOpenIsNotTakenAway) {
    SQLiteDB(path, false).execute("PRAGMA user_version = 0");
    {
        const OtherProgram other(path);
        EXPECT_THAT(failure([&] { restoreBook(backup, path, day(0)); }),
                    HasSubstr("请先退出 Tavik"));
    }
    EXPECT_NE(restoreBook(backup, path, day(0)).kept, std::nullopt);
    EXPECT_EQ(test::dump(path), original);
}

TEST_F(BackupTest, aRestoreThatIsKilledLeavesOneBookOrTheOther) {
    VocabularyStore book(path);
    for (int i = 0; i < 300; ++i)
        addWord(book, std::to_string(i), "A sentence.");
    const std::string many = directory.file("many.sqlite");
    backUpBook(book, path, many, Overwrite::no);
    const std::string full = test::dump(path);
    for (int round = 0; round < 40; ++round) {
        const pid_t child = fork();
        if (child == 0) {
            restoreBook(round % 2 == 0 ? backup : many, path, day(round));
            _exit(0);
        }
        std::this_thread::sleep_for(std::chrono::microseconds(round * 300));
        kill(child, SIGKILL);
        waitpid(child, nullptr, 0);
        const std::string now = test::dump(path);
        ASSERT_TRUE(now == original || now == full) << round;
        ASSERT_EQ(test::quickCheck(path), "ok");
    }
    EXPECT_EQ(restoreBook(backup, path, day(99)).counts.words, 2);
}

} // namespace
} // namespace tavik
