#pragma once

#include <chrono>
#include <cstddef>
#include <stdexcept>
#include <stop_token>
#include <string>
#include <utility>
#include <vector>

namespace tavik {

struct HTTPRequest {
    std::string method = "GET";
    /// Absolute, http or https.
    std::string url;
    std::vector<std::pair<std::string, std::string>> headers;
    std::string body;
    /// For all of it, from the name's resolution to the last byte.
    std::chrono::milliseconds timeout{60000};
};

struct HTTPResponse {
    /// 0 when the answer was no HTTP.
    int status = 0;
    std::string body;
    /// Whether the body was longer than the session takes, and `body` is its beginning.
    bool isCutOff = false;
};

/// A request that got no answer; `what()` is a Chinese sentence for the user.
class TransportError : public std::runtime_error {
public:
    enum class Kind {
        cannotResolve,
        cannotConnect,
        timedOut,
        /// No secure connection, or not with the server that was meant; nothing was sent.
        certificate,
        interrupted,
        cancelled,
        other,
    };

    /// `detail` is the transport's own words, shown for `other` only.
    explicit TransportError(Kind kind, const std::string& detail = {});

    Kind kind;
};

/// Sends HTTP requests, with certificates checked and without following redirects. Any thread may
/// send, several at once.
class HTTPSession {
public:
    struct Options {
        /// A file of certificates to trust in place of the system's.
        std::string certificateAuthority;
        /// Where to connect in place of a request's own host, as curl's "connect-to" has it:
        /// "host:port:address:port". With any of them, the environment's proxy is not used.
        std::vector<std::string> connectTo;
        std::size_t maxBodySize = std::size_t{8} * 1024 * 1024;
    };

    HTTPSession();
    explicit HTTPSession(Options options);

    /// Waits for the answer, whatever its status. Throws `TransportError`; at once when `stop` is
    /// requested.
    HTTPResponse send(const HTTPRequest& request, const std::stop_token& stop = {}) const;

private:
    Options options;
};

} // namespace tavik
