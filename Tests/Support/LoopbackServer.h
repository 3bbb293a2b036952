#pragma once

#include "Support/TemporaryDirectory.h"

#include <sys/types.h>

#include <map>
#include <string>
#include <vector>

namespace tavik::test {

struct ReceivedRequest {
    std::string method;
    std::string path;
    /// With their names in lower case.
    std::map<std::string, std::string> headers;
    std::string body;
};

/// A language model's service on 127.0.0.1, which runs as long as the object lives. How it answers
/// is a scenario of llm_server.py.
class LoopbackServer {
public:
    /// Speaks TLS when `certificate` names a file with a certificate and its key.
    explicit LoopbackServer(const std::string& certificate = {});
    ~LoopbackServer();
    LoopbackServer(const LoopbackServer&) = delete;
    LoopbackServer& operator=(const LoopbackServer&) = delete;

    int port() const { return ownPort; }

    /// The base URL under which chat completions play the scenario.
    std::string baseURL(const std::string& scenario) const;

    /// All that has come so far, oldest first.
    std::vector<ReceivedRequest> requests() const;

private:
    TemporaryDirectory directory;
    std::string log = directory.file("requests");
    pid_t process = -1;
    int input = -1;
    int ownPort = 0;
};

} // namespace tavik::test
