#include "Base/Preferences.h"
#include "Base/PreferencesFile.h"
#include "Support/ChildProcess.h"
#include "Support/TemporaryDirectory.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <nlohmann/json.hpp>
#include <sys/wait.h>
#include <unistd.h>

#include <csignal>
#include <filesystem>
#include <fstream>
#include <limits>
#include <sstream>
#include <thread>

namespace tavik {
namespace {

namespace fs = std::filesystem;
using nlohmann::json;
using testing::HasSubstr;

TEST(Preferences, numbersAndBooleansStandForEachOtherOnlyWhereNothingIsLost) {
    Preferences preferences;
    const auto with = [&](PreferenceValue value) -> const Preferences& {
        preferences.set("key", std::move(value));
        return preferences;
    };
    EXPECT_EQ(with(9.0).integer("key"), 9);
    EXPECT_EQ(with(9.5).integer("key"), std::nullopt);
    EXPECT_EQ(with(1e300).integer("key"), std::nullopt);
    EXPECT_EQ(with(true).integer("key"), 1);
    EXPECT_EQ(with(std::string("9")).integer("key"), std::nullopt);
    EXPECT_EQ(with(std::int64_t{1}).boolean("key"), true);
    EXPECT_EQ(with(std::int64_t{2}).boolean("key"), std::nullopt);
    EXPECT_EQ(with(0.0).boolean("key"), false);
    EXPECT_EQ(with(std::string("true")).boolean("key"), std::nullopt);
    EXPECT_EQ(with(std::int64_t{2}).number("key"), 2.0);
    EXPECT_EQ(with(std::numeric_limits<std::int64_t>::max()).number("key"), std::nullopt);
    EXPECT_EQ(with(std::numeric_limits<double>::quiet_NaN()).integer("key"), std::nullopt);
    EXPECT_EQ(with(std::int64_t{2}).text("key"), std::nullopt);
    EXPECT_TRUE(with(std::int64_t{2}).isSet("key"));
    EXPECT_TRUE(with(std::string("YES")).isSet("key"));
    EXPECT_FALSE(with(std::string("no")).isSet("key"));
    EXPECT_FALSE(preferences.isSet("other"));
}

class PreferencesFileTest : public testing::Test {
protected:
    std::string contents() const {
        std::ostringstream text;
        text << std::ifstream(path).rdbuf();
        return text.str();
    }

    void write(const std::string& text) const {
        fs::create_directories(path.parent_path());
        std::ofstream(path) << text;
    }

    test::TemporaryDirectory directory;
    fs::path path = directory.file("new/Tavik/preferences.json");
};

TEST_F(PreferencesFileTest, changesAreInTheFileAtOnceAndEverythingElseInItStays) {
    write(R"({"autoSpeak": 1, "future": {"deep": [1, null]}, "big": 18446744073709551615})");
    PreferencesFile file(path);
    PreferencesFile other(path);
    EXPECT_EQ(file.values().boolean("autoSpeak"), true);
    other.set("llmModel", std::string("m\xE2\x80\x9C"));
    file.set("hoverDelay", 0.25);
    file.set("reminderHour", std::int64_t{21});
    file.remove("autoSpeak");
    EXPECT_EQ(json::parse(contents()),
              json::parse(R"({"future": {"deep": [1, null]}, "big": 18446744073709551615,
                              "llmModel": "m“", "hoverDelay": 0.25, "reminderHour": 21})"));
    EXPECT_EQ(file.failure(), std::nullopt);
    EXPECT_EQ(PreferencesFile(path).values().number("hoverDelay"), 0.25);
    EXPECT_EQ(file.values().integer("reminderHour"), 21);
}

TEST_F(PreferencesFileTest, aDamagedFileReadsAsEmptyAndIsKeptBesideTheNewOne) {
    for (const std::string& damaged :
         {std::string(R"({"autoSpeak": tr)"), std::string("[1]"), std::string("\0\1", 2)}) {
        write(damaged);
        PreferencesFile file(path);
        EXPECT_EQ(file.values(), Preferences());
        file.set("autoSpeak", true);
        EXPECT_EQ(file.failure(), std::nullopt);
        EXPECT_EQ(json::parse(contents()), json::parse(R"({"autoSpeak": true})"));
    }
    std::ostringstream kept;
    kept << std::ifstream(path.string() + ".damaged").rdbuf();
    EXPECT_EQ(kept.str(), R"({"autoSpeak": tr)");
    EXPECT_TRUE(fs::exists(path.string() + ".damaged-3"));
    write("[2]");
    test::inChild({.maxFileSize = 2}, [&]() -> std::string {
        PreferencesFile file(path);
        for (int attempt = 0; attempt < 3; ++attempt)
            file.set("autoSpeak", true);
        return "";
    });
    EXPECT_EQ(contents(), "[2]");
    EXPECT_FALSE(fs::exists(path.string() + ".damaged-5")) << "once is enough";
}

TEST_F(PreferencesFileTest, whatCannotBeWrittenHoldsAndIsWrittenLater) {
    write(R"({"llmModel": "old"})");
    const std::string said = test::inChild({.unprivileged = true}, [&]() -> std::string {
        PreferencesFile file(path);
        file.set("llmModel", std::string("new"));
        return file.values().text("llmModel").value_or("") + '|' + file.failure().value_or("");
    });
    EXPECT_THAT(said, HasSubstr("new|设置没有存下来"));
    const std::string onFullDisk = test::inChild({.maxFileSize = 8}, [&]() -> std::string {
        PreferencesFile file(path);
        file.set("llmModel", std::string("new"));
        return file.failure().value_or("");
    });
    EXPECT_THAT(onFullDisk, HasSubstr("设置没有存下来"));
    EXPECT_EQ(contents(), R"({"llmModel": "old"})");

    fs::rename(path, path.string() + ".away");
    fs::create_directory(path);
    PreferencesFile file(path);
    file.set("llmModel", std::string("new"));
    file.set("autoSpeak", true);
    EXPECT_THAT(file.failure().value_or(""), HasSubstr("不是普通文件"));
    fs::remove(path);
    file.flush();
    EXPECT_EQ(file.failure(), std::nullopt);
    EXPECT_EQ(json::parse(contents()), json::parse(R"({"llmModel": "new", "autoSpeak": true})"));
}

TEST_F(PreferencesFileTest, programsThatWriteAtOnceLoseNothingOfEachOther) {
    constexpr int keysPerProgram = 60;
    const auto writeKeys = [&](const std::string& name) {
        PreferencesFile file(path);
        for (int number = 0; number < keysPerProgram; ++number)
            file.set(name + std::to_string(number), true);
        while (file.failure())
            file.flush();
    };
    const pid_t child = fork();
    if (child == 0) {
        writeKeys("child");
        _exit(0);
    }
    writeKeys("parent");
    waitpid(child, nullptr, 0);
    EXPECT_EQ(json::parse(contents()).size(), std::size_t{2} * keysPerProgram);
}

TEST_F(PreferencesFileTest, aProgramThatIsKilledLeavesTheOldFileOrTheNewOne) {
    write(R"({"reminderHour": 0})");
    const std::string filler(20000, 'x');
    const auto writtenHour = [&] {
        return PreferencesFile(path).values().integer("reminderHour").value_or(-1);
    };
    std::int64_t last = 0;
    for (int round = 0; round < 25; ++round) {
        const pid_t child = fork();
        if (child == 0) {
            PreferencesFile file(path);
            for (std::int64_t hour = last + 1;; ++hour) {
                file.set("reminderHour", hour);
                file.set("llmModel", filler);
            }
        }
        for (int wait = 0; wait < 5000 && writtenHour() == last; ++wait)
            std::this_thread::sleep_for(std::chrono::milliseconds(1));
        std::this_thread::sleep_for(std::chrono::microseconds(round * 131));
        kill(child, SIGKILL);
        waitpid(child, nullptr, 0);
        const auto whole = json::parse(contents(), nullptr, false);
        ASSERT_TRUE(whole.is_object()) << contents().substr(0, 200);
        ASSERT_GT(writtenHour(), last);
        last = writtenHour();
    }
}

} // namespace
} // namespace tavik
