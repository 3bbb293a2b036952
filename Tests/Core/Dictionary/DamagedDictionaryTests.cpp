#include "Dictionary/OfflineDictionary.h"
#include "Support/ChildProcess.h"
#include "Support/SampleDictionary.h"
#include "Support/TemporaryDirectory.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <filesystem>
#include <random>

namespace tavik {
namespace {

namespace fs = std::filesystem;

class DamagedDictionaryTest : public testing::Test {
protected:
    DamagedDictionaryTest() { test::makeSampleDictionary(path); }

    test::TemporaryDirectory directory;
    std::string path = directory.file("dict.sqlite");
};

/// Asks everything of the file at `path`: «error» when it cannot be opened or verified.
std::string askEverything(const std::string& path) {
    try {
        const OfflineDictionary dictionary(path);
        std::string answer = dictionary.entry("run") ? "entry " : "";
        answer += dictionary.lemma("mice") + ' ';
        answer += std::to_string(dictionary.examples("run", 3).size()) + ' ';
        answer += std::to_string(dictionary.suggestions("r", 3).size());
        try {
            dictionary.verify();
        } catch (const SQLiteDB::Error& error) {
            return answer + " error";
        }
        return answer;
    } catch (const SQLiteDB::Error& error) {
        return "unopened";
    }
}

TEST_F(DamagedDictionaryTest, aFileThatIsNoDictionaryAnswersNothingAndSaysSo) {
    EXPECT_EQ(askEverything(path), "entry mouse 3 2");
    EXPECT_EQ(askEverything(directory.file("missing")), "unopened");

    const std::string garbage = directory.file("garbage");
    test::writeFile(garbage, std::string(8192, 'x'));
    EXPECT_EQ(askEverything(garbage), "mice 0 0 error");

    const std::string empty = directory.file("empty");
    test::writeFile(empty, "");
    EXPECT_EQ(askEverything(empty), "mice 0 0 error");

    const std::string foreign = directory.file("foreign");
    SQLiteDB(foreign, false).execute("CREATE TABLE dict(x); CREATE TABLE examples(y)");
    EXPECT_EQ(askEverything(foreign), "mice 0 0 error");

    EXPECT_EQ(askEverything(directory.path().string()).substr(0, 2), "un");
}

TEST_F(DamagedDictionaryTest, anUnreadableFileIsAnOpenError) {
    fs::permissions(path, fs::perms::none);
    EXPECT_EQ(test::inChild({.unprivileged = true}, [&] { return askEverything(path); }),
              "unopened");
}

TEST_F(DamagedDictionaryTest, aWriteAheadLogFileInAReadOnlyPlaceIsAnErrorNotACrash) {
    const std::string wal = directory.file("wal.sqlite");
    test::makeSampleDictionary(wal);
    SQLiteDB(wal, false).execute("CREATE TABLE more(x)");
    fs::permissions(wal, fs::perms::owner_read | fs::perms::others_read);
    EXPECT_EQ(test::inChild({.unprivileged = true}, [&] { return askEverything(wal); }),
              "mice 0 0 error");
    EXPECT_EQ(test::inChild({.unprivileged = true}, [&] { return askEverything(path); }),
              "entry mouse 3 2");
}

TEST_F(DamagedDictionaryTest, noTruncationCrashesTheReader) {
    const std::string whole = test::readFile(path);
    for (std::size_t size = 0; size < whole.size(); size += 1000) {
        test::writeFile(path, whole.substr(0, size));
        askEverything(path);
    }
    test::writeFile(path, whole.substr(0, whole.size() / 2));
    EXPECT_THAT(askEverything(path), testing::HasSubstr("error"));
}

TEST_F(DamagedDictionaryTest, noFlippedBytesCrashTheReader) {
    const std::string whole = test::readFile(path);
    std::mt19937 random(20261121);
    constexpr int copies = 300;
    constexpr int flipsPerCopy = 20;
    for (int copy = 0; copy < copies; ++copy) {
        std::string damaged = whole;
        for (int flip = 0; flip < flipsPerCopy; ++flip)
            damaged[random() % damaged.size()] = static_cast<char>(random());
        test::writeFile(path, damaged);
        askEverything(path);
    }
}

} // namespace
} // namespace tavik
