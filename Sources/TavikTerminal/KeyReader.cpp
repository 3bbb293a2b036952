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
    for (const int number : {SIGINT, SIGTERM, SIGHUP, SIGQUIT})
        sigaddset(&set, number);
    return set;
}

/// Where the key that begins at `at` ends: behind its one byte, or its whole escape sequence.
std::size_t endOfKey(std::string_view typed, std::size_t at) {
    if (typed[at] != escape || at + 1 == typed.size()) return at + 1;
    std::size_t end = at + 2;
    if (typed[at + 1] == 'O') return std::min(end + 1, typed.size());
    if (typed[at + 1] != '[') return end;
    while (end < typed.size() && (typed[end] < '@' || typed[end] > '~'))
        ++end;
    return std::min(end + 1, typed.size());
}

} // namespace

KeyReader::KeyReader() {
    const sigset_t set = endingSignals();
    pthread_sigmask(SIG_BLOCK, &set, nullptr);
    signals = signalfd(-1, &set, SFD_CLOEXEC);
    termios settings{};
    if (tcgetattr(STDIN_FILENO, &settings) != 0) return;
    original = settings;
    settings.c_lflag &= ~static_cast<tcflag_t>(ICANON | ECHO | ISIG);
    settings.c_cc[VMIN] = 1;
    settings.c_cc[VTIME] = 0;
    tcsetattr(STDIN_FILENO, TCSADRAIN, &settings);
}

KeyReader::~KeyReader() {
    if (original) tcsetattr(STDIN_FILENO, TCSADRAIN, &*original);
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
    while (pending.empty()) {
        std::array<pollfd, 2> waiting{{{STDIN_FILENO, POLLIN, 0}, {signals, POLLIN, 0}}};
        if (poll(waiting.data(), waiting.size(), forever) < 0) {
            if (errno == EINTR) continue;
            return false;
        }
        if (waiting[1].revents != 0) return false;
        std::array<char, 256> buffer{};
        const ssize_t count = read(STDIN_FILENO, buffer.data(), buffer.size());
        if (count <= 0) return false;
        const std::string_view typed(buffer.data(), static_cast<std::size_t>(count));
        for (std::size_t at = 0; at < typed.size();) {
            const std::size_t end = endOfKey(typed, at);
            if (typed[at] != escape) pending.push_back(typed[at]);
            at = end;
        }
    }
    return true;
}

} // namespace tavik
