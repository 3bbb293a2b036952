#pragma once

#include <cstddef>
#include <functional>
#include <optional>
#include <string>
#include <vector>

namespace tavik::test {

struct ProcessResult {
    int exitCode = -1;
    std::string output;
    std::string errors;
};

/// Runs a program to its end with `input` on its standard input. A killed program has an exit code
/// of 128 and its signal.
ProcessResult runProcess(std::vector<std::string> command, const std::string& input = {});

/// What a child process of `inChild` may do less than this one.
struct Restrictions {
    /// Become the user "nobody" when running as root, whom file modes do not bind.
    bool unprivileged = false;
    /// The largest file it may write, in bytes: a full disk.
    std::optional<std::size_t> maxFileSize = std::nullopt;
};

/// Runs `body` in a forked child and returns what it printed by returning it. A child that crashes
/// gives "crashed".
std::string inChild(const Restrictions& restrictions, const std::function<std::string()>& body);

} // namespace tavik::test
