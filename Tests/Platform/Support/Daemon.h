#pragma once

#include <sys/types.h>

#include <chrono>
#include <optional>
#include <string>
#include <vector>

namespace tavik::test {

/// A program that runs beside the test until the object goes. What it prints is let go.
class BackgroundProgram {
public:
    /// The first word is looked for along PATH. `output` is the file that takes what it prints.
    explicit BackgroundProgram(std::vector<std::string> command,
                               const std::string& output = "/dev/null");
    ~BackgroundProgram();
    BackgroundProgram(const BackgroundProgram&) = delete;
    BackgroundProgram& operator=(const BackgroundProgram&) = delete;

    pid_t id() const { return process; }

    /// Sends it a signal, unless it has ended.
    void signal(int number) const;

    /// The exit code of a program that ends within `limit`; of one that a signal killed, 128 and
    /// the signal. Nothing when it still runs.
    std::optional<int> exitCodeWithin(std::chrono::milliseconds limit);

private:
    /// -1 once it has ended.
    pid_t process = -1;
    int exitCode = -1;
};

/// A daemon of the private desktop (Tools/Desktop/daemon), which is ready when the constructor
/// returns.
class Daemon {
public:
    /// The name and its arguments. Throws if the daemon does not get ready.
    explicit Daemon(const std::vector<std::string>& words);

    void signal(int number) const { program.signal(number); }

private:
    BackgroundProgram program;
};

/// What a file holds as soon as that contains `text`. Throws with what it holds after 10 seconds.
std::string awaitText(const std::string& text, const std::string& file);

/// Whether all these programs are to be found along PATH.
bool areInstalled(const std::vector<std::string>& programs);

} // namespace tavik::test
