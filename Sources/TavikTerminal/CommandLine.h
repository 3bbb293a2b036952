#pragma once

#include <CLI/CLI.hpp>

#include <functional>
#include <string>

namespace tavik {

/// Exit codes that every program shares.
inline constexpr int exitOK = 0;
inline constexpr int exitError = 1;
inline constexpr int exitNotFound = 2;

/// Gives `app` Chinese help, "-h,--help" and "--version". To be called before anything is added,
/// for commands inherit it.
void speakChinese(CLI::App& app);

/// Adds a command to an `app` that speaks Chinese.
CLI::App* addCommand(CLI::App& app, const std::string& name, const std::string& description);

/// Accepts numbers from `low` to `high`; for others says `explanation`, a Chinese predicate such as
/// "应是 0 到 9 的整数".
CLI::Validator within(double low, double high, const std::string& explanation);

/// Parses the arguments and then calls `run`, whose result it returns. Help and version are
/// printed to standard output; a wrong command line, an exception from `run`, and output that could
/// not be written become one Chinese sentence on standard error and `exitError`.
int runCommandLine(CLI::App& app, int argc, char** argv, const std::function<int()>& run);

} // namespace tavik
