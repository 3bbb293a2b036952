#pragma once

#include "Platform/Support/Daemon.h"
#include "Platform/Support/ScreenReader.h"
#include "Support/ChildProcess.h"
#include "Support/TemporaryDirectory.h"

#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

#include <chrono>
#include <functional>
#include <string>
#include <vector>

namespace tavik::test {

/// The program as users start it, with data and settings of its own.
class ProgramTest : public testing::Test {
protected:
    std::vector<std::string> command(const std::vector<std::string>& arguments = {}) const;

    /// Starts a program that ends by itself.
    ProcessResult startToEnd(const std::vector<std::string>& arguments = {}) const;

    /// Whether the program that was started gets so far that a second start can show it.
    bool becomesReady() const;

    /// To be called before the program starts.
    void writePreferences(const std::string& json) const;

    /// Saves a word, due at once, from outside of the program.
    void save(const std::string& word) const;

    /// Whether something becomes so, as a rule within the time that is given to a busy machine.
    static bool soon(const std::function<bool()>& isSo,
                     std::chrono::seconds patience = std::chrono::seconds(15));

    /// What the tray answers to a command, whose words are quoted and separated by commas.
    static nlohmann::json tray(const std::string& words);

    /// As the tray has it; empty when it has no icon.
    static std::string toolTip();

    static bool isWindowShown(const std::string& title);

    /// The title of the window that has the keyboard.
    static std::string activeWindow();

    static bool becomesActive(const std::string& title);

    static void press(const std::string& keys);

    /// Presses the button whose name begins so, once the window shows it.
    static bool pressButton(ScreenReader& reader, const std::string& window,
                            const std::string& name);

    TemporaryDirectory directory;
    std::string data = directory.file("data");
    std::string settings = directory.file("settings");
};

} // namespace tavik::test
