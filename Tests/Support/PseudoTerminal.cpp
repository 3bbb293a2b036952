#include "Support/PseudoTerminal.h"

#include <poll.h>
#include <pty.h>
#include <sys/ioctl.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <csignal>
#include <stdexcept>

namespace tavik::test {
namespace {

constexpr int patienceMilliseconds = 10000;

[[noreturn]] void become(std::vector<std::string> command) {
    std::vector<char*> arguments;
    for (std::string& argument : command)
        arguments.push_back(argument.data());
    arguments.push_back(nullptr);
    execv(arguments.front(), arguments.data());
    _exit(127);
}

/// Makes `far` the terminal of this process.
void takeTerminal(int far) {
    setsid();
    ioctl(far, TIOCSCTTY, 0);
    for (const int stream : {STDIN_FILENO, STDOUT_FILENO, STDERR_FILENO})
        dup2(far, stream);
    close(far);
}

/// Appends what the program prints; false when it has ended or keeps silent.
bool readSome(int terminal, std::string& screen) {
    pollfd waiting{terminal, POLLIN, 0};
    if (poll(&waiting, 1, patienceMilliseconds) <= 0) return false;
    std::array<char, 4096> buffer{};
    const ssize_t count = read(terminal, buffer.data(), buffer.size());
    if (count <= 0) return false;
    screen.append(buffer.data(), static_cast<std::size_t>(count));
    return true;
}

/// Reads on until the program has ended; it is killed when it does not end in time.
int awaitEnd(pid_t child, int terminal, std::string& screen) {
    constexpr int slice = 20;
    int status = 0;
    for (int waited = 0; waitpid(child, &status, WNOHANG) == 0; waited += slice) {
        if (waited > patienceMilliseconds) kill(child, SIGKILL);
        pollfd waiting{terminal, POLLIN, 0};
        if (poll(&waiting, 1, slice) > 0) readSome(terminal, screen);
    }
    return status;
}

bool areEqual(const termios& one, const termios& other) {
    return one.c_iflag == other.c_iflag && one.c_oflag == other.c_oflag
           && one.c_lflag == other.c_lflag && one.c_cflag == other.c_cflag
           && std::ranges::equal(one.c_cc, other.c_cc);
}

} // namespace

TerminalResult runInTerminal(std::vector<std::string> command,
                             const std::vector<TerminalStep>& steps) {
    int terminal = -1;
    int far = -1;
    const winsize size{40, 80, 0, 0};
    if (openpty(&terminal, &far, nullptr, nullptr, &size) != 0)
        throw std::runtime_error("no terminal");
    termios before{};
    tcgetattr(far, &before);
    const pid_t child = fork();
    if (child == 0) {
        close(terminal);
        takeTerminal(far);
        become(std::move(command));
    }

    TerminalResult result;
    std::size_t seen = 0;
    for (const auto& [awaited, keys] : steps) {
        std::size_t found = std::string::npos;
        while ((found = result.screen.find(awaited, seen)) == std::string::npos)
            if (!readSome(terminal, result.screen)) break;
        if (found == std::string::npos) break;
        seen = found + awaited.size();
        if (write(terminal, keys.data(), keys.size()) < 0) break;
    }
    const int status = awaitEnd(child, terminal, result.screen);
    pollfd rest{terminal, POLLIN, 0};
    while (poll(&rest, 1, 0) > 0 && readSome(terminal, result.screen)) {
    }
    termios after{};
    result.isRestored = tcgetattr(far, &after) == 0 && areEqual(before, after);
    result.exitCode = WIFEXITED(status) ? WEXITSTATUS(status) : 128 + WTERMSIG(status);
    close(far);
    close(terminal);
    return result;
}

} // namespace tavik::test
