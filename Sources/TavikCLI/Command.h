#pragma once

#include <CLI/CLI.hpp>

#include <string>
#include <vector>

namespace tavik {

/// The most that a `--limit` takes.
inline constexpr double maxLimit = 1000000;

/// The words of a command line as one phrase.
std::string phraseOf(const std::vector<std::string>& words);

/// One command of the program, with its options. It must outlive the parse.
class Command {
public:
    virtual ~Command() = default;
    Command(const Command&) = delete;
    Command& operator=(const Command&) = delete;

    bool isChosen() const { return command->parsed(); }

    /// Does what the command line asks for; the exit code.
    virtual int run() const = 0;

protected:
    Command(CLI::App& app, const std::string& name, const std::string& description);

    CLI::App& options() { return *command; }

    /// Adds `--json`.
    void addJSONFlag(bool& asJSON, const std::string& description);
    /// Adds `--dictionary`.
    void addDictionaryOption(std::string& path);

private:
    CLI::App* command;
};

} // namespace tavik
