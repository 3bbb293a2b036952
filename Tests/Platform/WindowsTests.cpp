#include "Platform/Support/Daemon.h"
#include "Platform/Support/ScreenReader.h"
#include "Storage/SQLiteDB.h"
#include "Support/Book.h"
#include "Support/ChildProcess.h"
#include "Support/TemporaryDirectory.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <chrono>
#include <filesystem>
#include <fstream>
#include <functional>
#include <set>
#include <thread>
#include <tuple>

namespace tavik {
namespace {

namespace fs = std::filesystem;
using test::ShownControl;
using testing::Contains;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::Not;
using namespace std::chrono_literals;

constexpr std::uint32_t progressBar = 42;
constexpr std::uint32_t pushButton = 43;
constexpr std::uint32_t tableCell = 56;

constexpr auto program = "Tavik";
constexpr auto review = "Tavik · 今日复习";
constexpr auto book = "Tavik · 生词本";
constexpr auto reveal = "显示答案（空格）";

/// The program with three words due, whose windows are worked in as its users do it.
class WindowsTest : public testing::Test {
protected:
    void SetUp() override {
        if (!fs::exists("/usr/libexec/at-spi-bus-launcher"))
            GTEST_SKIP() << "this takes at-spi2-core";
        fs::create_directories(settings + "/Tavik");
        std::ofstream(settings + "/Tavik/preferences.json") << R"({"onboardingDone": true})";
        save("ephemeral", "短暂的", 0);
        save("gregarious", "爱交际的", 1);
        save("ubiquitous", "无处不在的", 2);
        running.emplace(command());
        ASSERT_TRUE(soon([this] { return fs::exists(data + "/tavik.socket"); }));
        ASSERT_EQ(test::runProcess(command()).exitCode, 0) << "a second start shows the window";
        reader.emplace(running->id());
    }

    void TearDown() override {
        if (!running) return;
        running->signal(SIGTERM);
        EXPECT_EQ(running->exitCodeWithin(10s), 0);
    }

    /// Whether something becomes so within the time that is given to a busy machine.
    static bool soon(const std::function<bool()>& isSo) {
        const auto end = std::chrono::steady_clock::now() + 15s;
        while (!isSo()) {
            if (std::chrono::steady_clock::now() > end) return false;
            std::this_thread::sleep_for(20ms);
        }
        return true;
    }

    /// What shows in a window, where all that is used or tells of progress must have a name.
    std::vector<ShownControl> read(const std::string& window) {
        const std::set<std::uint32_t> named{progressBar, pushButton, atspi::roleText,
                                            atspi::roleEntry};
        auto shown = reader->window(window);
        for (const ShownControl& control : shown)
            EXPECT_FALSE(named.contains(control.role) && control.name.empty())
                << "role " << control.role << " without a name in " << window;
        return shown;
    }

    std::vector<std::string> names(const std::string& window, std::uint32_t role) {
        std::vector<std::string> all;
        for (const ShownControl& control : read(window))
            if (control.role == role) all.push_back(control.name);
        return all;
    }

    /// Everything that a window says.
    std::string words(const std::string& window) {
        std::string all;
        for (const ShownControl& control : read(window))
            all += control.name + '|' + control.text + '\n';
        return all;
    }

    bool says(const std::string& window, const std::string& text) {
        return soon([&] { return words(window).find(text) != std::string::npos; });
    }

    /// Acts on the control whose name begins so, once there is one.
    void press(const std::string& window, const std::string& name,
               std::uint32_t role = pushButton) {
        const auto isFound = soon([&] {
            const auto shown = read(window);
            const auto at = std::ranges::find_if(shown, [&](const ShownControl& control) {
                return control.role == role && control.name.starts_with(name);
            });
            return at != shown.end() && reader->act(*at);
        });
        EXPECT_TRUE(isFound) << "no " << name << " in\n" << words(window);
    }

    bool hasKeyboard(const std::string& window) {
        return soon([&] {
            const auto shown = read(window);
            return !shown.empty() && shown.front().states.contains(atspi::stateActive);
        });
    }

    bool closes(const std::string& window) {
        return soon([&] { return read(window).empty(); });
    }

    static void type(std::vector<std::string> keys) {
        keys.insert(keys.begin(), {"/usr/bin/xdotool", "key"});
        EXPECT_EQ(test::runProcess(keys).exitCode, 0);
    }

    bool hasWord(const std::string& lemma) const {
        return VocabularyStore(bookFile).wordIDForLemma(lemma).has_value();
    }

    /// All ratings in the book, each with its word.
    std::string ratings() const {
        const auto rows =
            SQLiteDB(bookFile, true)
                .query("SELECT group_concat(line, ', ') AS lines FROM (SELECT lemma || ' ' || "
                       "rating AS line "
                       "FROM review_log JOIN word ON word.id = word_id ORDER BY review_log.id)");
        return std::string(rows.front().text("lines").value_or(""));
    }

    std::optional<test::ScreenReader> reader;

private:
    std::vector<std::string> command() const {
        return {"/usr/bin/env", "TAVIK_DATA_DIR=" + data, "XDG_CONFIG_HOME=" + settings,
                TAVIK_PROGRAM};
    }

    void save(const std::string& word, const std::string& meaning, double due) const {
        fs::create_directories(data);
        DictEntry entry;
        entry.translations = {"a. " + meaning};
        VocabularyStore(bookFile).add(
            word, word, entry, word, "Here " + word + " stands.", "就是" + meaning,
            {"Firefox", "firefox", "https://example.org/" + word}, test::day(due));
    }

    test::TemporaryDirectory directory;
    std::string data = directory.file("data");
    std::string settings = directory.file("settings");
    std::string bookFile = data + "/tavik.sqlite";
    std::optional<test::BackgroundProgram> running;
};

TEST_F(WindowsTest, theWordsOfTheDayAreReviewedByAScreenReader) {
    press(program, "今日复习（3 个待复习）");
    for (const auto& [word, meaning, rating] :
         {std::tuple{"ephemeral", "短暂的", "忘记"}, std::tuple{"gregarious", "爱交际的", "记得"},
          std::tuple{"ubiquitous", "无处不在的", "太简单"},
          std::tuple{"ephemeral", "短暂的", "模糊"}}) {
        ASSERT_TRUE(says(review, "Here " + std::string(word) + " stands."));
        EXPECT_THAT(words(review), Not(HasSubstr(meaning))) << "the answer is not given away";
        EXPECT_THAT(names(review, progressBar), ElementsAre("本次进度"));
        press(review, reveal);
        EXPECT_TRUE(says(review, "就是" + std::string(meaning)));
        press(review, rating);
    }
    EXPECT_TRUE(says(review, "今天的复习完成了！"));
    EXPECT_THAT(words(review), HasSubstr("本次复习了 4 次"));
    EXPECT_EQ(ratings(), "ephemeral 1, gregarious 3, ubiquitous 4, ephemeral 2");
    press(review, "关闭");
    EXPECT_TRUE(closes(review));
    press(program, "今日复习（已完成）");
    EXPECT_TRUE(says(review, "现在没有需要复习的单词"));
}

TEST_F(WindowsTest, aWordIsLookedAtAndDeletedByAScreenReader) {
    press(program, "生词本（3）");
    press(book, "gregarious", tableCell);
    EXPECT_TRUE(says(book, "Here gregarious stands."));
    EXPECT_THAT(words(book), HasSubstr("就是爱交际的"));
    EXPECT_THAT(words(book), Not(HasSubstr("Here ephemeral")));
    EXPECT_THAT(names(book, tableCell), Contains("a. 无处不在的"));
    press(book, "从生词本删除");
    EXPECT_TRUE(soon([this] { return !hasWord("gregarious"); }));
    EXPECT_TRUE(soon([this] { return names(book, tableCell).size() == 8; }));
    EXPECT_TRUE(hasWord("ephemeral") && hasWord("ubiquitous"));
    EXPECT_TRUE(says(program, "生词本（2）"));
}

TEST_F(WindowsTest, theSpaceBarShowsAndNumbersRate) {
    press(program, "今日复习");
    ASSERT_TRUE(hasKeyboard(review));
    for (const std::string rating : {"1", "2", "3", "4"}) {
        ASSERT_TRUE(says(review, reveal));
        // Before the answer is there, a number rates nothing.
        type({rating, "space", "space"});
        ASSERT_TRUE(says(review, "忘记，"));
        type({rating});
    }
    EXPECT_TRUE(says(review, "今天的复习完成了！"));
    EXPECT_EQ(ratings(), "ephemeral 1, gregarious 2, ubiquitous 3, ephemeral 4");
    type({"Escape"});
    EXPECT_TRUE(closes(review));
}

TEST_F(WindowsTest, theBookIsSearchedAndAWordDeletedWithKeysAlone) {
    press(program, "生词本");
    ASSERT_TRUE(hasKeyboard(book));
    type({"u", "b", "i", "q"});
    EXPECT_TRUE(says(book, "找到 1 个"));
    EXPECT_THAT(names(book, tableCell), ElementsAre("ubiquitous", "a. 无处不在的", "1 次", "现在"));
    type({"Down"});
    EXPECT_TRUE(says(book, "Here ubiquitous stands."));
    type({"Delete"});
    EXPECT_TRUE(soon([this] { return !hasWord("ubiquitous"); }));
    EXPECT_TRUE(says(book, "没有找到匹配的单词"));
    type({"Escape"});
    EXPECT_TRUE(soon([this] { return names(book, tableCell).size() == 8; }));
    EXPECT_TRUE(hasWord("ephemeral") && hasWord("gregarious"));
    type({"Escape"});
    EXPECT_TRUE(closes(book));
}

} // namespace
} // namespace tavik
