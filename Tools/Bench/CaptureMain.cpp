#include "Capture/CaptureError.h"
#include "Capture/SelectionCapture.h"
#include "Platform/Linux/AtSpi/AtSpiAccessibility.h"
#include "Platform/Linux/Process/ProcProcesses.h"
#include "Platform/Linux/X11/X11Pasteboard.h"
#include "Platform/Linux/X11/X11Workspace.h"

#include <CLI/CLI.hpp>

#include <algorithm>
#include <chrono>
#include <cstdint>
#include <cstdio>
#include <exception>
#include <filesystem>
#include <fstream>
#include <iostream>
#include <map>
#include <memory>
#include <string>
#include <thread>
#include <vector>

namespace {

using namespace tavik;
using Clock = std::chrono::steady_clock;
using Milliseconds = std::chrono::duration<double, std::milli>;

/// A desktop with one application in front, whose window nobody has to see.
class Pretence final : public Workspace {
public:
    explicit Pretence(std::int64_t processIdentifier) {
        front.processIdentifier = processIdentifier;
    }

    std::optional<FrontApplication> frontApplication() override { return front; }

    std::vector<FrontApplication> applications() override { return {front}; }

    std::vector<ScreenRect> screens() override { return {{0, 0, 1280, 800}}; }

private:
    FrontApplication front;
};

std::unique_ptr<Workspace> makeWorkspace(std::int64_t processIdentifier) {
    if (processIdentifier != 0) return std::make_unique<Pretence>(processIdentifier);
    return std::make_unique<X11Workspace>(
        [](const std::string&, const std::string&) { return std::optional<std::string>(); });
}

struct Run {
    std::vector<double> milliseconds;
    /// How often each text came; none counts as empty.
    std::map<std::string, int> texts;
};

std::string captureOnce(const SelectionCapture& selection, Run& run) {
    std::string text;
    const auto begin = Clock::now();
    try {
        text = selection.capture().text;
    } catch (const CaptureError&) {
        // What was not captured is counted like everything else.
    }
    run.milliseconds.push_back(Milliseconds(Clock::now() - begin).count());
    ++run.texts[text];
    return text;
}

/// A word that was selected just now is told by its application in its own time.
bool awaitText(const SelectionCapture& selection, const std::string& text) {
    const auto end = Clock::now() + std::chrono::seconds(10);
    for (Run unused; captureOnce(selection, unused) != text;) {
        if (Clock::now() > end) return false;
        std::this_thread::sleep_for(std::chrono::milliseconds(100));
    }
    return true;
}

double quantile(std::vector<double> values, double share) {
    std::sort(values.begin(), values.end());
    return values.at(static_cast<std::size_t>(share * static_cast<double>(values.size() - 1)));
}

void printTimes(const Run& run) {
    std::printf("median %7.1f   p90 %7.1f   worst %7.1f ms\n", quantile(run.milliseconds, 0.5),
                quantile(run.milliseconds, 0.9), quantile(run.milliseconds, 1));
    for (const auto& [text, count] : run.texts)
        std::printf("  %d times \"%.60s\"\n", count, text.c_str());
}

std::size_t entriesOf(const char* folder) {
    const std::filesystem::directory_iterator entries(folder);
    return static_cast<std::size_t>(std::distance(begin(entries), end(entries)));
}

std::string residentMemory() {
    std::ifstream lines("/proc/self/status");
    for (std::string line; std::getline(lines, line);)
        if (line.starts_with("VmRSS:")) return line.substr(line.find_first_of("0123456789"));
    return "?";
}

void printHoldings(const char* moment) {
    std::printf("%s: %zu descriptors, %zu threads, %s resident\n", moment,
                entriesOf("/proc/self/fd"), entriesOf("/proc/self/task"), residentMemory().c_str());
    static_cast<void>(std::fflush(stdout));
}

int runCommandLine(int argc, char** argv) {
    CLI::App app("Captures what is selected in the application in front, again and again.",
                 "tavik-bench-capture");
    int captures = 100;
    std::int64_t process = 0;
    std::string awaited;
    bool isSoak = false;
    app.add_option("--captures", captures, "How often")
        ->check(CLI::PositiveNumber)
        ->capture_default_str();
    app.add_option("--process", process, "Take this process for the one in front");
    app.add_option("--await", awaited, "Wait for this text before the first measurement");
    app.add_flag("--soak", isSoak, "Tell what this process holds before and after");
    CLI11_PARSE(app, argc, argv);

    const auto workspace = makeWorkspace(process);
    AtSpiAccessibility accessibility;
    X11Pasteboard pasteboard;
    ProcProcesses processes;
    const SelectionCapture selection({accessibility, *workspace, pasteboard, processes,
                                      [] { return true; }, [](const std::string&) {}});
    Run run;
    if (!awaited.empty() && !awaitText(selection, awaited)) {
        std::cerr << "tavik-bench-capture: the text is not captured\n";
        return 1;
    }
    // The first capture connects, and what it then holds it keeps.
    captureOnce(selection, run);
    if (isSoak) printHoldings("before");
    run = {};
    for (int i = 0; i < captures; ++i)
        captureOnce(selection, run);
    if (isSoak) printHoldings("after ");
    printTimes(run);
    return 0;
}

} // namespace

int main(int argc, char** argv) {
    try {
        return runCommandLine(argc, argv);
    } catch (const std::exception& error) {
        std::cerr << "tavik-bench-capture: " << error.what() << '\n';
        return 1;
    }
}
