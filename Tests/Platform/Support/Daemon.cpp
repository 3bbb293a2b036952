#include "Platform/Support/Daemon.h"

#include "Support/ChildProcess.h"
#include "Support/TemporaryDirectory.h"

#include <fcntl.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include <chrono>
#include <csignal>
#include <cstdlib>
#include <stdexcept>
#include <thread>

namespace tavik::test {
namespace {

std::vector<std::string> toolCommand(const std::string& tool,
                                     const std::vector<std::string>& words) {
    std::vector<std::string> command{TAVIK_DESKTOP_TOOLS "/" + tool};
    command.insert(command.end(), words.begin(), words.end());
    return command;
}

std::string logOf(const std::vector<std::string>& words) {
    const char* session = std::getenv("TAVIK_SESSION");
    if (session == nullptr) throw std::runtime_error("run this by Tools/Desktop/session");
    return std::string(session) + "/log/" + words.front() + ".log";
}

} // namespace

BackgroundProgram::BackgroundProgram(std::vector<std::string> command, const std::string& output) {
    std::vector<char*> arguments;
    for (std::string& argument : command)
        arguments.push_back(argument.data());
    arguments.push_back(nullptr);
    posix_spawn_file_actions_t actions{};
    posix_spawn_file_actions_init(&actions);
    posix_spawn_file_actions_addopen(&actions, STDIN_FILENO, "/dev/null", O_RDONLY, 0);
    posix_spawn_file_actions_addopen(&actions, STDOUT_FILENO, output.c_str(),
                                     O_WRONLY | O_CREAT | O_TRUNC, 0600);
    posix_spawn_file_actions_adddup2(&actions, STDOUT_FILENO, STDERR_FILENO);
    const int status =
        posix_spawnp(&process, arguments.front(), &actions, nullptr, arguments.data(), environ);
    posix_spawn_file_actions_destroy(&actions);
    if (status != 0) throw std::runtime_error("cannot start " + command.front());
}

BackgroundProgram::~BackgroundProgram() {
    signal(SIGTERM);
    signal(SIGCONT);
    if (exitCodeWithin(std::chrono::seconds(2))) return;
    signal(SIGKILL);
    waitpid(process, nullptr, 0);
}

void BackgroundProgram::signal(int number) const {
    if (process >= 0) kill(process, number);
}

std::optional<int> BackgroundProgram::exitCodeWithin(std::chrono::milliseconds limit) {
    const auto end = std::chrono::steady_clock::now() + limit;
    while (process >= 0) {
        int status = 0;
        if (waitpid(process, &status, WNOHANG) != 0) {
            process = -1;
            exitCode = WIFSIGNALED(status) ? 128 + WTERMSIG(status) : WEXITSTATUS(status);
        } else if (std::chrono::steady_clock::now() >= end) {
            return std::nullopt;
        } else {
            std::this_thread::sleep_for(std::chrono::milliseconds(5));
        }
    }
    return exitCode;
}

Daemon::Daemon(const std::vector<std::string>& words)
    : program(toolCommand("daemon", words), logOf(words)) {
    const ProcessResult waited = runProcess(toolCommand("wait-for", words));
    if (waited.exitCode != 0) throw std::runtime_error(waited.errors);
}

std::string awaitText(const std::string& text, const std::string& file) {
    const auto end = std::chrono::steady_clock::now() + std::chrono::seconds(10);
    while (true) {
        std::string held = readFile(file);
        if (held.find(text) != std::string::npos) return held;
        if (std::chrono::steady_clock::now() > end)
            throw std::runtime_error(held.insert(0, "not what was awaited in " + file + ": "));
        std::this_thread::sleep_for(std::chrono::milliseconds(1));
    }
}

bool areInstalled(const std::vector<std::string>& programs) {
    std::vector<std::string> command{"/usr/bin/which"};
    command.insert(command.end(), programs.begin(), programs.end());
    return runProcess(command).exitCode == 0;
}

} // namespace tavik::test
