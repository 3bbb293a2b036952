#include "Learning/FSRSScheduler.h"
#include "Support/Book.h"
#include "Support/ChildProcess.h"

#include <gmock/gmock.h>
#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <atomic>
#include <csignal>
#include <cstdio>
#include <memory>
#include <random>
#include <thread>

namespace tavik {
namespace {

using test::addWord;
using test::day;

const FSRSScheduler scheduler = FSRSScheduler::standard(0.9);

class StoreSharingTest : public test::BookTest {};

TEST_F(StoreSharingTest, readersAndWritersOfOneStoreNeverSeeHalfASave) {
    VocabularyStore book(path);
    std::atomic<int> changes = 0;
    book.setOnChange([&] { ++changes; });
    constexpr int rounds = 60;
    constexpr int writers = 2;
    std::atomic<bool> isDone = false;
    std::vector<std::jthread> readers;
    for (int reader = 0; reader < 2; ++reader)
        readers.emplace_back([&] {
            while (!isDone) {
                for (const VocabItem& item : book.items(""))
                    EXPECT_EQ(item.encounterCount, 1);
                book.dueItems(day(99), 10);
                book.dueCount(day(99));
                book.cachedExplanation("key");
            }
        });
    {
        std::vector<std::jthread> threads;
        for (int writer = 0; writer < writers; ++writer)
            threads.emplace_back([&, writer] {
                for (int round = 0; round < rounds; ++round) {
                    const std::string lemma = std::to_string(writer) + '-' + std::to_string(round);
                    const auto id = addWord(book, lemma, lemma + '.').wordID;
                    book.review(id, Rating::good, scheduler, day(1));
                    book.cacheExplanation({lemma, "", {}}, "key", day(1));
                    if (round % 2 == 0) book.delete_(id);
                }
            });
    }
    isDone = true;
    readers.clear();
    EXPECT_EQ(book.wordCount(), writers * rounds / 2);
    EXPECT_EQ(changes, writers * rounds * 5 / 2);
}

/// A program that saves and reviews words as fast as it can and says so after each, until it is
/// killed.
class BusyProgram {
public:
    BusyProgram(const std::string& path, int round) {
        std::array<int, 2> ends{};
        if (pipe(ends.data()) != 0) throw std::runtime_error("pipe failed");
        child = fork();
        if (child == 0) {
            close(ends[0]);
            work(path, round, ends[1]);
        }
        close(ends[1]);
        reading.reset(fdopen(ends[0], "r"));
    }

    /// Kills it after `count` acknowledgements and `delay`; every acknowledgement it gave.
    std::vector<std::string> killAfter(int count, std::chrono::microseconds delay) {
        std::vector<std::string> lines;
        std::array<char, 64> line{};
        bool isKilled = false;
        while (std::fgets(line.data(), line.size(), reading.get()) != nullptr) {
            lines.emplace_back(line.data());
            lines.back().pop_back();
            if (isKilled || static_cast<int>(lines.size()) < count) continue;
            std::this_thread::sleep_for(delay);
            kill(child, SIGKILL);
            isKilled = true;
        }
        waitpid(child, nullptr, 0);
        return lines;
    }

private:
    [[noreturn]] static void work(const std::string& path, int round, int output) {
        try {
            VocabularyStore book(path);
            for (int i = 0;; ++i) {
                const std::string lemma = std::to_string(round) + '-' + std::to_string(i);
                const auto id = addWord(book, lemma, "With " + lemma).wordID;
                say(output, "saved " + lemma + '\n');
                book.review(id, Rating::good, scheduler, day(1));
                say(output, "reviewed " + lemma + '\n');
            }
        } catch (const std::exception& error) {
            say(output, std::string(error.what()) + '\n');
        }
        _exit(1);
    }

    static void say(int output, const std::string& line) {
        if (write(output, line.data(), line.size()) < 0) _exit(2);
    }

    pid_t child = -1;
    std::unique_ptr<std::FILE, int (*)(std::FILE*)> reading{nullptr, std::fclose};
};

TEST_F(StoreSharingTest, whatWasAcknowledgedOutlivesAKilledProgram) {
    std::mt19937 random{20261121};
    constexpr std::size_t wanted = 2000;
    std::size_t acknowledged = 0;
    for (int round = 0; acknowledged < wanted; ++round) {
        BusyProgram program(path, round);
        const auto lines = program.killAfter(std::uniform_int_distribution(1, 150)(random),
                                             std::chrono::microseconds(random() % 800));
        acknowledged += lines.size();
        ASSERT_EQ(test::quickCheck(path), "ok");
        const VocabularyStore book(path);
        for (const std::string& line : lines) {
            const auto [did, lemma] =
                std::pair(line.substr(0, line.find(' ')), line.substr(line.find(' ') + 1));
            const auto id = book.wordIDForLemma(lemma);
            ASSERT_TRUE(id) << line;
            ASSERT_EQ(book.encounters(*id).size(), 1U) << line;
            ASSERT_GE(book.card(*id)->reps, did == "reviewed" ? 1 : 0) << line;
        }
    }
    SQLiteDB db(path, true);
    EXPECT_TRUE(db.query("SELECT w.id FROM word w LEFT JOIN card c ON c.word_id = w.id LEFT JOIN "
                         "encounter e ON e.word_id = w.id WHERE c.word_id IS NULL OR e.id IS NULL")
                    .empty())
        << "no half-saved word";
    EXPECT_TRUE(
        db.query("SELECT word_id FROM card WHERE reps <> (SELECT count(*) FROM review_log l "
                 "WHERE l.word_id = card.word_id)")
            .empty())
        << "no half-stored review";
}

} // namespace
} // namespace tavik
