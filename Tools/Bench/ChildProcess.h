#pragma once

#include <filesystem>
#include <string>
#include <vector>

namespace tavik {

/// A program to run. It shares this program's standard error.
struct Command {
    /// The program, looked for in PATH unless it has a slash, and its arguments.
    std::vector<std::string> arguments;
    std::filesystem::path input = "/dev/null";
    std::filesystem::path output = "/dev/null";
    /// Its environment, as NAME=value; empty for that of this program.
    std::vector<std::string> environment = {};
};

struct CommandResult {
    /// From before the process is made until it has been waited for.
    double microseconds = 0;
    /// What the process took of the processors, by itself and in the kernel.
    double processorMicroseconds = 0;
};

/// Throws a system error when the program cannot be started, a runtime error when it fails.
CommandResult run(const Command& command);

/// The most memory that the program has resident at once. Throws as `run` does.
double peakMegabytes(const Command& command);

/// This program's own file.
std::filesystem::path ownProgram();

} // namespace tavik
