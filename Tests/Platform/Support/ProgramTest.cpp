#include "Platform/Support/ProgramTest.h"

#include <algorithm>
#include <chrono>
#include <filesystem>
#include <fstream>
#include <thread>

namespace tavik::test {
namespace {

using namespace std::chrono_literals;

/// AT-SPI's number for a button.
constexpr std::uint32_t rolePushButton = 43;

} // namespace

std::vector<std::string> ProgramTest::command(const std::vector<std::string>& arguments) const {
    std::vector<std::string> all{"/usr/bin/env", "TAVIK_DATA_DIR=" + data,
                                 "XDG_CONFIG_HOME=" + settings, TAVIK_PROGRAM};
    all.insert(all.end(), arguments.begin(), arguments.end());
    return all;
}

ProcessResult ProgramTest::startToEnd(const std::vector<std::string>& arguments) const {
    auto limited = command(arguments);
    limited.insert(limited.begin(), {"/usr/bin/timeout", "20"});
    return runProcess(limited);
}

bool ProgramTest::becomesReady() const {
    return soon([this] { return std::filesystem::exists(data + "/tavik.socket"); });
}

void ProgramTest::writePreferences(const std::string& json) const {
    std::filesystem::create_directories(settings + "/Tavik");
    std::ofstream(settings + "/Tavik/preferences.json") << json;
}

void ProgramTest::save(const std::string& word) const {
    const auto saved =
        runProcess({"/usr/bin/env", "TAVIK_DATA_DIR=" + data, TAVIK_CLI, "save", word});
    EXPECT_EQ(saved.exitCode, 0) << saved.errors;
}

bool ProgramTest::soon(const std::function<bool()>& isSo, std::chrono::seconds patience) {
    const auto end = std::chrono::steady_clock::now() + patience;
    // Who waits for long does not keep the machine busy.
    const auto pause = std::chrono::milliseconds(patience) / 700;
    while (!isSo()) {
        if (std::chrono::steady_clock::now() > end) return false;
        std::this_thread::sleep_for(pause);
    }
    return true;
}

nlohmann::json ProgramTest::tray(const std::string& words) {
    const auto asked =
        runProcess({"/usr/bin/gdbus", "call", "--session", "-d", "com.tavik.TestTray", "-o", "/",
                    "-m", "com.tavik.TestTray.Command", "[" + words + "]"});
    const auto begin = asked.output.find('{');
    const auto end = asked.output.rfind('}');
    if (begin == std::string::npos || end == std::string::npos) return {};
    return nlohmann::json::parse(asked.output.substr(begin, end - begin + 1), nullptr, false);
}

std::string ProgramTest::toolTip() {
    const auto answer = tray("'item'");
    // An icon's name, its picture, the title and the text.
    return answer.contains("item") ? answer["item"]["ToolTip"].at(2).get<std::string>() : "";
}

bool ProgramTest::isWindowShown(const std::string& title) {
    return runProcess({"/usr/bin/xdotool", "search", "--onlyvisible", "--name", title}).exitCode
           == 0;
}

std::string ProgramTest::activeWindow() {
    std::string title = runProcess({"/usr/bin/xdotool", "getactivewindow", "getwindowname"}).output;
    if (title.ends_with('\n')) title.pop_back();
    return title;
}

bool ProgramTest::becomesActive(const std::string& title) {
    return soon([&] { return activeWindow() == title; });
}

void ProgramTest::press(const std::string& keys) {
    runProcess({"/usr/bin/xdotool", "key", keys});
}

bool ProgramTest::pressButton(ScreenReader& reader, const std::string& window,
                              const std::string& name) {
    return soon([&] {
        const auto shown = reader.window(window);
        const auto at = std::ranges::find_if(shown, [&](const ShownControl& control) {
            return control.role == rolePushButton && control.name.starts_with(name);
        });
        return at != shown.end() && reader.act(*at);
    });
}

} // namespace tavik::test
