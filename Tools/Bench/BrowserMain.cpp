#include "BrowserTrial.h"
#include "Main/Desktop.h"
#include "PaintClock.h"
#include "Platform/Linux/Process/SocketInstance.h"
#include "SampleBook.h"
#include "UI/Widgets/Fonts.h"

#include <CLI/CLI.hpp>

#include <QTemporaryDir>
#include <exception>
#include <filesystem>
#include <iostream>
#include <string>

namespace {

using namespace tavik;

constexpr std::size_t openings = 21;

nlohmann::json measure(PaintClock& clock, std::size_t words, std::size_t rounds) {
    const QTemporaryDir folder;
    const std::filesystem::path data = folder.path().toStdString();
    SampleBook::write(data / AppEnvironment::bookName, words);
    SocketInstance instance(data);
    Desktop desktop(true);
    AppSettings settings(desktop.preferences(), desktop.keychain(),
                         AppSettings::standardKeychainAccount);
    const ShellPorts ports = desktop.shellPorts(instance);
    AppEnvironment env(data, settings, AppEnvironment::defaultDictionaryPath(), ports.environment);
    BrowserTrial trial(clock, env, ports.windowSystem);
    nlohmann::json report{{"words", words}};
    report["open"] = trial.open(openings);
    report["keys"] = trial.type(rounds);
    report["ahead"] = trial.typeAhead(rounds);
    report["scroll"] = trial.scroll(rounds);
    return report;
}

} // namespace

/// Measures the window of the vocabulary book over a made-up book, and prints all times and what
/// the process holds as one line of JSON. For the private desktop.
int main(int argumentCount, char** arguments) {
    try {
        // As the program has it: it costs time and memory.
        qputenv("QT_LINUX_ACCESSIBILITY_ALWAYS_ON", "1");
        PaintClock clock(argumentCount, arguments);
        PaintClock::setQuitOnLastWindowClosed(false);
        PaintClock::setFont(uiFont(FontSizes::body));
        CLI::App app("Measures the window of the vocabulary book.", "tavik-bench-browser");
        std::size_t words = 10000;
        std::size_t rounds = 6;
        app.add_option("--words", words, "Words of the book")
            ->check(CLI::Range(std::size_t{100}, SampleBook::maxWords))
            ->capture_default_str();
        app.add_option("--rounds", rounds, "How often everything is typed")
            ->check(CLI::PositiveNumber)
            ->capture_default_str();
        CLI11_PARSE(app, argumentCount, arguments);
        std::cout << measure(clock, words, rounds) << '\n';
        return EXIT_SUCCESS;
    } catch (const std::exception& error) {
        std::cerr << "tavik-bench-browser: " << error.what() << '\n';
        return EXIT_FAILURE;
    }
}
