#include "Support/ChildProcess.h"

#include <grp.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <csignal>
#include <stdexcept>
#include <thread>

namespace tavik::test {
namespace {

constexpr unsigned nobody = 65534;

struct Pipe {
    Pipe() {
        if (pipe(ends.data()) != 0) throw std::runtime_error("pipe failed");
    }

    int readEnd() const { return ends[0]; }

    int writeEnd() const { return ends[1]; }

    std::array<int, 2> ends{};
};

std::string readAll(int descriptor) {
    std::string text;
    std::array<char, 4096> buffer{};
    for (ssize_t count = 0; (count = read(descriptor, buffer.data(), buffer.size())) > 0;)
        text.append(buffer.data(), static_cast<std::size_t>(count));
    close(descriptor);
    return text;
}

void writeAll(int descriptor, const std::string& text) {
    for (std::size_t done = 0; done < text.size();) {
        const ssize_t count = write(descriptor, text.data() + done, text.size() - done);
        if (count <= 0) break;
        done += static_cast<std::size_t>(count);
    }
    close(descriptor);
}

int exitCodeOf(pid_t child) {
    int status = 0;
    waitpid(child, &status, 0);
    return WIFEXITED(status) ? WEXITSTATUS(status) : 128 + WTERMSIG(status);
}

void restrict(const Restrictions& restrictions) {
    if (restrictions.maxFileSize) {
        static_cast<void>(std::signal(SIGXFSZ, SIG_IGN));
        const rlimit limit{*restrictions.maxFileSize, *restrictions.maxFileSize};
        setrlimit(RLIMIT_FSIZE, &limit);
    }
    if (!restrictions.unprivileged || geteuid() != 0) return;
    if (setgroups(0, nullptr) != 0 || setgid(nobody) != 0 || setuid(nobody) != 0) _exit(99);
}

} // namespace

ProcessResult runProcess(std::vector<std::string> command, const std::string& input) {
    // Before the fork: another thread may hold the lock of the memory then, for ever in the child.
    std::vector<char*> arguments;
    for (std::string& argument : command)
        arguments.push_back(argument.data());
    arguments.push_back(nullptr);
    const Pipe in;
    const Pipe out;
    const Pipe err;
    const pid_t child = fork();
    if (child == 0) {
        // Without the terminal that the tests may have been started from.
        setsid();
        dup2(in.readEnd(), STDIN_FILENO);
        dup2(out.writeEnd(), STDOUT_FILENO);
        dup2(err.writeEnd(), STDERR_FILENO);
        for (const Pipe& pipe : {in, out, err})
            for (const int end : pipe.ends)
                close(end);
        execv(arguments.front(), arguments.data());
        _exit(127);
    }
    close(in.readEnd());
    close(out.writeEnd());
    close(err.writeEnd());
    static_cast<void>(std::signal(SIGPIPE, SIG_IGN));
    ProcessResult result;
    std::thread feeder([&] { writeAll(in.writeEnd(), input); });
    std::thread errorReader([&] { result.errors = readAll(err.readEnd()); });
    result.output = readAll(out.readEnd());
    feeder.join();
    errorReader.join();
    result.exitCode = exitCodeOf(child);
    return result;
}

std::string inChild(const Restrictions& restrictions, const std::function<std::string()>& body) {
    const Pipe out;
    const pid_t child = fork();
    if (child == 0) {
        close(out.readEnd());
        restrict(restrictions);
        std::string answer;
        try {
            answer = body();
        } catch (const std::exception& error) {
            answer = error.what();
        }
        writeAll(out.writeEnd(), answer);
        _exit(0);
    }
    close(out.writeEnd());
    const std::string answer = readAll(out.readEnd());
    return exitCodeOf(child) == 0 ? answer : "crashed";
}

} // namespace tavik::test
