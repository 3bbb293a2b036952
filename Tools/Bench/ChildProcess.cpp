#include "ChildProcess.h"

#include "Samples.h"

#include <fcntl.h>
#include <spawn.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>
#include <cstdlib>
#include <fstream>
#include <optional>
#include <stdexcept>
#include <string_view>
#include <system_error>

namespace tavik {
namespace {

class FileActions {
public:
    explicit FileActions(const Command& command) {
        posix_spawn_file_actions_init(&actions);
        posix_spawn_file_actions_addopen(&actions, STDIN_FILENO, command.input.c_str(), O_RDONLY,
                                         0);
        posix_spawn_file_actions_addopen(&actions, STDOUT_FILENO, command.output.c_str(),
                                         O_WRONLY | O_CREAT | O_TRUNC, 0666);
    }

    ~FileActions() { posix_spawn_file_actions_destroy(&actions); }

    FileActions(const FileActions&) = delete;
    FileActions& operator=(const FileActions&) = delete;

    const posix_spawn_file_actions_t* get() const { return &actions; }

private:
    posix_spawn_file_actions_t actions{};
};

/// `texts` as the system wants them, to be used no longer than they live.
std::vector<char*> pointersTo(std::vector<std::string>& texts) {
    std::vector<char*> pointers;
    pointers.reserve(texts.size() + 1);
    for (std::string& text : texts)
        pointers.push_back(text.data());
    pointers.push_back(nullptr);
    return pointers;
}

pid_t started(const Command& command) {
    const FileActions actions(command);
    auto arguments = command.arguments;
    auto environment = command.environment;
    const auto argumentPointers = pointersTo(arguments);
    const auto environmentPointers = pointersTo(environment);
    pid_t process = 0;
    const int error = posix_spawnp(&process, argumentPointers.front(), actions.get(), nullptr,
                                   argumentPointers.data(),
                                   environment.empty() ? environ : environmentPointers.data());
    if (error != 0) throw std::system_error(error, std::generic_category(), arguments.front());
    return process;
}

/// What the process used; nothing as long as it runs, if `options` say not to wait for its end.
std::optional<rusage> ended(pid_t process, int options) {
    int status = 0;
    rusage usage{};
    const pid_t changed = wait4(process, &status, options, &usage);
    if (changed < 0) throw std::system_error(errno, std::generic_category(), "wait4");
    if (changed == 0) return std::nullopt;
    if (!WIFEXITED(status) || WEXITSTATUS(status) == EXIT_FAILURE)
        throw std::runtime_error("a program to be measured failed");
    return usage;
}

double microseconds(const timeval& time) {
    constexpr double perSecond = 1e6;
    return static_cast<double>(time.tv_sec) * perSecond + static_cast<double>(time.tv_usec);
}

/// The "high water mark" of a running process; nothing of one that is about to end.
std::optional<double> highWaterMegabytes(pid_t process) {
    constexpr std::string_view key = "VmHWM:";
    constexpr double kilobytesPerMegabyte = 1024;
    std::ifstream status("/proc/" + std::to_string(process) + "/status");
    for (std::string line; std::getline(status, line);)
        if (line.rfind(key, 0) == 0)
            return std::stod(line.substr(key.size())) / kilobytesPerMegabyte;
    return std::nullopt;
}

} // namespace

CommandResult run(const Command& command) {
    const Stopwatch stopwatch;
    const auto usage = ended(started(command), 0);
    return {stopwatch.microseconds(),
            microseconds(usage->ru_utime) + microseconds(usage->ru_stime)};
}

// The peak that wait4() tells is of no use: it begins with what this program has resident when it
// starts the other.
double peakMegabytes(const Command& command) {
    const pid_t process = started(command);
    double peak = 0;
    while (!ended(process, WNOHANG))
        peak = highWaterMegabytes(process).value_or(peak);
    return peak;
}

std::filesystem::path ownProgram() {
    return std::filesystem::read_symlink("/proc/self/exe");
}

} // namespace tavik
