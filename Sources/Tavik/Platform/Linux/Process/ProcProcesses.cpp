#include "Platform/Linux/Process/ProcProcesses.h"

#include <unistd.h>

#include <algorithm>
#include <charconv>
#include <cstddef>
#include <ctime>
#include <filesystem>
#include <fstream>
#include <map>
#include <sstream>
#include <string_view>
#include <system_error>

namespace tavik {
namespace fs = std::filesystem;

namespace {

constexpr std::size_t longestCommand = 65536;
constexpr std::size_t longestStat = 4096;
/// Of one process; looking through more would take too long.
constexpr int mostDescriptors = 100'000;

fs::path folderOf(std::int64_t process) {
    return fs::path("/proc") / std::to_string(process);
}

/// The beginning of a file; empty when it cannot be read.
std::string beginning(const fs::path& file, std::size_t limit) {
    std::ifstream stream(file, std::ios::binary);
    std::string text(limit, '\0');
    stream.read(text.data(), static_cast<std::streamsize>(limit));
    text.resize(static_cast<std::size_t>(stream.gcount()));
    return text;
}

struct Status {
    char state = 0;
    std::int64_t parent = 0;
    /// In ticks of the clock since the machine was started.
    double start = 0;
};

std::optional<Status> statusOf(std::int64_t process) {
    const std::string text = beginning(folderOf(process) / "stat", longestStat);
    // The name before it may hold anything, also ") T 1 (".
    const std::size_t endOfName = text.rfind(')');
    if (endOfName == std::string::npos) return std::nullopt;
    std::istringstream fields(text.substr(endOfName + 1));
    Status status;
    fields >> status.state >> status.parent;
    constexpr int fieldsBetween = 17;
    std::string passedOver;
    for (int i = 0; i < fieldsBetween; ++i)
        fields >> passedOver;
    if (!(fields >> status.start)) return std::nullopt;
    return status;
}

std::optional<std::int64_t> processNamed(const std::string& name) {
    std::int64_t process = 0;
    const char* const end = name.data() + name.size();
    if (std::from_chars(name.data(), end, process).ptr != end) return std::nullopt;
    return process;
}

/// The children of every process that has some.
std::multimap<std::int64_t, std::int64_t> childrenOfAll() {
    std::multimap<std::int64_t, std::int64_t> children;
    std::error_code error;
    for (fs::directory_iterator entry("/proc", error); !error && entry != fs::directory_iterator();
         entry.increment(error))
        if (const auto process = processNamed(entry->path().filename()))
            if (const auto status = statusOf(*process)) children.emplace(status->parent, *process);
    return children;
}

/// All that descend from `process`, without itself.
std::vector<std::int64_t> descendants(std::int64_t process) {
    auto children = childrenOfAll();
    std::vector<std::int64_t> found;
    std::vector<std::int64_t> waiting{process};
    while (!waiting.empty()) {
        const auto [first, last] = children.equal_range(waiting.back());
        waiting.pop_back();
        for (auto child = first; child != last; ++child) {
            found.push_back(child->second);
            waiting.push_back(child->second);
        }
        // So that identifiers which were used anew meanwhile lead nowhere twice.
        children.erase(first, last);
    }
    return found;
}

/// What is seen of a process among its open files.
enum class Terminal { none, held, unseen, gone };

Terminal whatFailureMeans(const std::error_code& error) {
    const bool isGone = error == std::errc::no_such_file_or_directory
                        || error == std::errc::no_such_process
                        || error == std::errc::not_a_directory;
    return isGone ? Terminal::gone : Terminal::unseen;
}

/// The side of a pseudo-terminal that a terminal's window holds is always called so, wherever the
/// process has its devices.
bool isMaster(const fs::path& file) {
    return file.filename() == "ptmx";
}

Terminal terminalOf(std::int64_t process) {
    std::error_code error;
    fs::directory_iterator descriptor(folderOf(process) / "fd", error);
    if (error) return whatFailureMeans(error);
    for (int seen = 0; descriptor != fs::directory_iterator(); ++seen) {
        std::error_code unread;
        const fs::path file = fs::read_symlink(descriptor->path(), unread);
        if (seen >= mostDescriptors || unread == std::errc::permission_denied)
            return Terminal::unseen;
        if (isMaster(file)) return Terminal::held;
        descriptor.increment(error);
        if (error) return whatFailureMeans(error);
    }
    return Terminal::none;
}

double secondsOf(clockid_t clock) {
    timespec now{};
    clock_gettime(clock, &now);
    constexpr double nanosecond = 1e-9;
    return static_cast<double>(now.tv_sec) + static_cast<double>(now.tv_nsec) * nanosecond;
}

} // namespace

bool ProcProcesses::mayHoldTerminal(std::int64_t processIdentifier) {
    if (processIdentifier <= 0 || terminalOf(processIdentifier) != Terminal::none) return true;
    // Browsers lock up those of their children that show pages, so that nobody can look into them.
    return std::ranges::any_of(descendants(processIdentifier), [](std::int64_t child) {
        return terminalOf(child) == Terminal::held;
    });
}

bool ProcProcesses::isStopped(std::int64_t processIdentifier) {
    const auto status = statusOf(processIdentifier);
    return status && (status->state == 'T' || status->state == 't');
}

std::vector<std::string> ProcProcesses::arguments(std::int64_t processIdentifier) {
    const std::string command = beginning(folderOf(processIdentifier) / "cmdline", longestCommand);
    std::vector<std::string> found;
    for (std::size_t start = 0; start < command.size();) {
        const std::size_t end = std::min(command.find('\0', start), command.size());
        found.push_back(command.substr(start, end - start));
        start = end + 1;
    }
    return found;
}

std::optional<Date> ProcProcesses::startTime(std::int64_t processIdentifier) {
    const auto status = statusOf(processIdentifier);
    if (!status) return std::nullopt;
    const double sinceBoot = status->start / static_cast<double>(sysconf(_SC_CLK_TCK));
    return dateFromSeconds(secondsOf(CLOCK_REALTIME) - secondsOf(CLOCK_BOOTTIME) + sinceBoot);
}

} // namespace tavik
