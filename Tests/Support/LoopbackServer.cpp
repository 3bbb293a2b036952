#include "Support/LoopbackServer.h"

#include <fcntl.h>
#include <nlohmann/json.hpp>
#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <sstream>
#include <stdexcept>

namespace tavik::test {
namespace {

/// Reads a line that ends the output of a program for now.
std::string readLine(int descriptor) {
    std::string line;
    std::array<char, 64> buffer{};
    while (!line.ends_with('\n')) {
        const ssize_t count = read(descriptor, buffer.data(), buffer.size());
        if (count <= 0) throw std::runtime_error("the loopback server does not start");
        line.append(buffer.data(), static_cast<std::size_t>(count));
    }
    return line;
}

} // namespace

LoopbackServer::LoopbackServer(const std::string& certificate) {
    std::vector<std::string> command{"/usr/bin/env", "python3", TAVIK_LLM_SERVER, log};
    if (!certificate.empty()) command.push_back(certificate);
    std::vector<char*> arguments;
    for (std::string& argument : command)
        arguments.push_back(argument.data());
    arguments.push_back(nullptr);

    std::array<int, 2> in{};
    std::array<int, 2> out{};
    if (pipe2(in.data(), O_CLOEXEC) != 0 || pipe2(out.data(), O_CLOEXEC) != 0)
        throw std::runtime_error("pipe failed");
    process = fork();
    if (process == 0) {
        dup2(in[0], STDIN_FILENO);
        dup2(out[1], STDOUT_FILENO);
        execv(arguments.front(), arguments.data());
        _exit(127);
    }
    close(in[0]);
    close(out[1]);
    input = in[1];
    ownPort = std::stoi(readLine(out[0]));
    close(out[0]);
}

LoopbackServer::~LoopbackServer() {
    close(input);
    waitpid(process, nullptr, 0);
}

std::string LoopbackServer::baseURL(const std::string& scenario) const {
    return "http://127.0.0.1:" + std::to_string(ownPort) + '/' + scenario + "/v1";
}

std::vector<ReceivedRequest> LoopbackServer::requests() const {
    std::vector<ReceivedRequest> result;
    std::istringstream lines(readFile(log));
    for (std::string line; std::getline(lines, line);) {
        const auto json = nlohmann::json::parse(line);
        result.push_back({json.at("method"), json.at("path"), json.at("headers"), json.at("body")});
    }
    return result;
}

} // namespace tavik::test
