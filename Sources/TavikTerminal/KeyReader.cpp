#include "TavikTerminal/KeyReader.h"

#include <poll.h>
#include <sys/signalfd.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <csignal>
#include <string_view>

namespace tavik {
namespace {

constexpr char controlC = 3;
constexpr char controlD = 4;
constexpr char escape = 27;

sigset_t endingSignals() {
    sigset_t set{};
    sigemptyset(&set);
    for (const int number : {SIGINT, SIGTERM, SIGHUP, SIGQUIT, SIGPIPE})
        sigaddset(&set, number);
    return set;
}

/// Where the key that begins at `at` ends: behind its one byte, or its whole escape sequence;
/// npos when the end has not come yet.
std::size_t endOfKey(std::string_view typed, std::size_t at) {
    if (typed[at] != escape) return at + 1;
    if (at + 1 == typed.size()) return std::string_view::npos;
    std::size_t end = at + 2;
    if (typed[at + 1] == 'O') return end < typed.size() ? end + 1 : std::string_view::npos;
    if (typed[at + 1] != '[') return end;
    while (end < typed.size() && (typed[end] < '@' || typed[end] > '~'))
        ++end;
    return end < typed.size() ? end + 1 : std::string_view::npos;
}

} // namespace

KeyReader::KeyReader(int descriptor) : descriptor(descriptor) {
    const sigset_t set = endingSignals();
    pthread_sigmask(SIG_BLOCK, &set, nullptr);
    signals = signalfd(-1, &set, SFD_CLOEXEC | SFD_NONBLOCK);
    termios settings{};
    if (tcgetattr(descriptor, &settings) != 0) return;
    original = settings;
    settings.c_lflag &= ~static_cast<tcflag_t>(ICANON | ECHO | ISIG);
    settings.c_cc[VMIN] = 1;
    settings.c_cc[VTIME] = 0;
    tcsetattr(descriptor, TCSADRAIN, &settings);
}

KeyReader::~KeyReader() {
    if (original) tcsetattr(descriptor, TCSADRAIN, &*original);
    // What has come is dealt with; left where it is, it would end the program after all.
    signalfd_siginfo signal{};
    while (read(signals, &signal, sizeof signal) > 0) {
    }
    close(signals);
    const sigset_t set = endingSignals();
    pthread_sigmask(SIG_UNBLOCK, &set, nullptr);
}

std::optional<char> KeyReader::next() {
    if (pending.empty() && !readMore()) return std::nullopt;
    const char key = pending.front();
    pending.pop_front();
    if (isTerminal() && (key == controlC || key == controlD)) return std::nullopt;
    return key;
}

bool KeyReader::readMore() {
    constexpr int forever = -1;
    // Long enough for a slow line to bring the rest of a key, too short for a person to notice.
    constexpr int patience = 50;
    while (pending.empty()) {
        std::string typed;
        if (!readInto(typed, forever)) return false;
        for (std::size_t at = 0; at < typed.size();) {
            std::size_t end = endOfKey(typed, at);
            while (end == std::string::npos && readInto(typed, patience))
                end = endOfKey(typed, at);
            if (typed[at] != escape) pending.push_back(typed[at]);
            at = std::min(end, typed.size());
        }
    }
    return true;
}

bool KeyReader::readInto(std::string& typed, int milliseconds) {
    std::array<pollfd, 2> waiting{{{descriptor, POLLIN, 0}, {signals, POLLIN, 0}}};
    int ready = 0;
    do
        ready = poll(waiting.data(), waiting.size(), milliseconds);
    while (ready < 0 && errno == EINTR);
    if (ready <= 0 || waiting[1].revents != 0) return false;
    std::array<char, 256> buffer{};
    const ssize_t count = read(descriptor, buffer.data(), buffer.size());
    if (count <= 0) return false;
    typed.append(buffer.data(), static_cast<std::size_t>(count));
    return true;
}

} // namespace tavik
