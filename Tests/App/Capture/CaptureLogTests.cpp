#include "Capture/CaptureError.h"
#include "Capture/CaptureLog.h"
#include "Support/Book.h"
#include "Support/ChildProcess.h"
#include "Support/TemporaryDirectory.h"

#include <fcntl.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <filesystem>
#include <latch>
#include <stdexcept>
#include <string>
#include <thread>
#include <vector>

namespace tavik {
namespace {

namespace fs = std::filesystem;
using namespace std::chrono_literals;
using testing::HasSubstr;

constexpr std::size_t mebibyte = 1 << 20;

unsigned modeOf(const fs::path& path) {
    struct stat status {};

    return lstat(path.c_str(), &status) == 0 ? status.st_mode & 07777U : 0;
}

class CaptureLogTest : public testing::Test {
protected:
    CaptureLog log() const {
        return CaptureLog(file, [this] { return now; });
    }

    std::string contents() const { return test::readFile(file); }

    test::TemporaryDirectory directory;
    fs::path file = directory.path() / "Library/Logs/Tavik/capture.log";
    /// 2026-11-21 18:42:48.9 UTC
    Date now = dateFromSeconds(1795286568.9);
    Date start = now - 12ms;
    CaptureResult result{
        "cat", "The cat sat.", {"编辑器", "org.example.editor", "https://a.example/"}};
    CaptureError error{CaptureError::Kind::nothingSelected, {"编辑器", "org.example.editor"}};
};

TEST_F(CaptureLogTest, eachCaptureIsALineWithAllThatIsKnown) {
    log().write(result, start);
    log().write(error, start);
    result = {"cat", {}, {}, {}, CaptureMethod::clipboard};
    log().write(result, now - 2s);
    result.method = CaptureMethod::axMarker;
    log().write(result, now + 1h);
    log().write(CaptureError(CaptureError::Kind::notTrusted), start);
    log().write(std::runtime_error("odd"), start);
    EXPECT_EQ(contents(),
              "2026-11-21T18:42:48Z 编辑器 org.example.editor method=ax-text text=\"cat\" "
              "sentence=yes url=https://a.example/ 12ms\n"
              "2026-11-21T18:42:48Z 编辑器 org.example.editor error=\"没有读取到选中的文字\" 12ms\n"
              "2026-11-21T18:42:48Z ?  method=clipboard text=\"cat\" sentence=no url=- 2000ms\n"
              "2026-11-21T18:42:48Z ?  method=ax-marker text=\"cat\" sentence=no url=- 0ms\n"
              "2026-11-21T18:42:48Z ?  error=\"需要「辅助功能」权限才能读取选中的文字\" 12ms\n"
              "2026-11-21T18:42:48Z ?  error=\"odd\" 12ms\n");
}

TEST_F(CaptureLogTest, whateverComesFromOutsideStaysOnItsLine) {
    std::string text;
    for (int i = 0; i < 100; ++i)
        text += "e\u0301";
    result.text = text;
    log().write(result, start);
    EXPECT_THAT(contents(), HasSubstr("text=\"" + text.substr(0, 240) + "\" "));
    result = {"a\r\nb\xFF\x1B[2J", {}, {"x\ny", "z\n", "https://a.example/\n2"}};
    log().write(result, start);
    log().write(std::runtime_error("odd\nline"), start);
    const std::string lines = contents();
    EXPECT_EQ(std::ranges::count(lines, '\n'), 3);
    EXPECT_EQ(lines.find('\x1B'), std::string::npos);
    EXPECT_EQ(lines.find('\r'), std::string::npos);
}

TEST_F(CaptureLogTest, onlyTheUserReadsItWhateverTheMaskIs) {
    EXPECT_EQ(CaptureLog::standardPath([](const char*) { return "/home/me"; }),
              "/home/me/Library/Logs/Tavik/capture.log");
    const mode_t before = umask(0);
    log().write(result, start);
    umask(before);
    EXPECT_EQ(modeOf(file), 0600U);
    EXPECT_EQ(modeOf(file.parent_path()), 0700U);
    EXPECT_EQ(modeOf(directory.path() / "Library"), 0700U);
    fs::permissions(file, fs::perms(0644));
    log().write(result, start);
    EXPECT_EQ(modeOf(file), 0600U);
}

TEST_F(CaptureLogTest, aFullFileMakesRoomForTheNext) {
    fs::create_directories(file.parent_path());
    const fs::path older = file.string() + ".1";
    test::writeFile(older, "oldest");
    test::writeFile(file, std::string(mebibyte - 200, 'x') + '\n');
    fs::permissions(file, fs::perms(0644));
    log().write(result, start);
    EXPECT_EQ(test::readFile(older), "oldest") << "there was room";
    log().write(result, start);
    EXPECT_EQ(std::ranges::count(contents(), '\n'), 1);
    EXPECT_EQ(modeOf(file), 0600U);
    EXPECT_EQ(modeOf(older), 0600U);
    EXPECT_GT(fs::file_size(older), mebibyte - 200);
}

TEST_F(CaptureLogTest, manyWritersKeepTheirLinesWhole) {
    fs::create_directories(file.parent_path());
    // The first lines fill it, and the others begin a new one.
    test::writeFile(file, std::string(mebibyte - 2000, 'x') + '\n');
    const auto writeMany = [this] {
        for (int i = 0; i < 200; ++i)
            log().write(result, start);
    };
    std::vector<pid_t> processes;
    for (int i = 0; i < 4; ++i) {
        processes.push_back(fork());
        if (processes.back() != 0) continue;
        writeMany();
        _exit(0);
    }
    for (const pid_t process : processes)
        EXPECT_EQ(waitpid(process, nullptr, 0), process);
    {
        std::vector<std::jthread> threads;
        for (int i = 0; i < 4; ++i)
            threads.emplace_back(writeMany);
    }
    const std::string all = test::readFile(file.string() + ".1") + contents();
    EXPECT_EQ(std::ranges::count(all, '\n'), 1 + 8 * 200);
    std::size_t whole = 0;
    for (std::size_t at = all.find("2026-"); at != std::string::npos;
         at = all.find("2026-", at + 1))
        if (all.substr(all.find('\n', at) - 5, 5) == " 12ms") ++whole;
    EXPECT_EQ(whole, 8U * 200);
}

TEST_F(CaptureLogTest, writersThatFindAFullFileMoveItAsideOnce) {
    fs::create_directories(file.parent_path());
    const fs::path older = file.string() + ".1";
    for (int round = 0; round < 200; ++round) {
        test::writeFile(file, "");
        fs::resize_file(file, mebibyte);
        {
            std::latch all(8);
            std::vector<std::jthread> writers;
            for (int i = 0; i < 8; ++i)
                writers.emplace_back([&] {
                    all.arrive_and_wait();
                    log().write(result, start);
                });
        }
        ASSERT_GE(fs::file_size(older), mebibyte);
    }
}

TEST_F(CaptureLogTest, nothingButAFileIsWrittenTo) {
    fs::create_directories(file.parent_path());
    const fs::path elsewhere = directory.path() / "elsewhere";
    test::writeFile(elsewhere, "");
    fs::create_symlink(elsewhere, file);
    log().write(result, start);
    EXPECT_EQ(test::readFile(elsewhere), "");
    fs::remove(file);
    ASSERT_EQ(mkfifo(file.c_str(), 0600), 0);
    log().write(result, start);
    const int reader = open(file.c_str(), O_RDONLY | O_NONBLOCK | O_CLOEXEC);
    log().write(result, start);
    char byte = 0;
    EXPECT_EQ(read(reader, &byte, 1), 0) << "no writer, and nothing written";
    close(reader);
    fs::remove(file);
    fs::create_directory(file);
    log().write(result, start);
    EXPECT_TRUE(fs::is_empty(file));
}

TEST_F(CaptureLogTest, whatCannotBeWrittenIsLeftOutWhole) {
    fs::create_directories(file.parent_path());
    const std::string before(mebibyte - 50, 'x');
    // The older file cannot be replaced.
    test::writeFile(file, before);
    fs::create_directories(file.string() + ".1/full");
    log().write(result, start);
    EXPECT_EQ(contents(), before);
    // The disk is full in the middle of the line.
    test::writeFile(file, "first\n");
    test::inChild({.maxFileSize = 40}, [this] {
        log().write(result, start);
        return std::string();
    });
    EXPECT_EQ(contents(), "first\n");
    // Nothing may be written here.
    const std::string printed = test::inChild({.unprivileged = true}, [] {
        CaptureLog("/proc/none/capture.log").write(std::runtime_error("odd"), currentDate());
        CaptureLog("").write(std::runtime_error("odd"), currentDate());
        return std::string("survived");
    });
    EXPECT_EQ(printed, "survived");
}

} // namespace
} // namespace tavik
