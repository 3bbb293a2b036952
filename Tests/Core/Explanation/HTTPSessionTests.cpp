#include "Explanation/HTTPSession.h"
#include "Support/ChildProcess.h"
#include "Support/LoopbackServer.h"
#include "Support/TestCertificates.h"

#include <arpa/inet.h>
#include <dlfcn.h>
#include <gmock/gmock.h>
#include <netdb.h>
#include <sys/socket.h>
#include <unistd.h>

#include <atomic>
#include <filesystem>
#include <iostream>
#include <stdexcept>
#include <string_view>
#include <thread>

namespace {

std::atomic<bool>& isResolverHeld() {
    static std::atomic<bool> isHeld = false;
    return isHeld;
}

} // namespace

/// The resolver that libcurl finds in this program: "unknown.test" does not exist anywhere, and
/// "slow.test" has no answer while the resolver is held.
extern "C" int getaddrinfo(const char* name, const char* service, const addrinfo* req,
                           addrinfo** pai) {
    using namespace std::string_view_literals;
    static const auto real =
        reinterpret_cast<decltype(&getaddrinfo)>(dlsym(RTLD_NEXT, "getaddrinfo"));
    if (name == "slow.test"sv) isResolverHeld().wait(true);
    if (name == "slow.test"sv || name == "unknown.test"sv) return EAI_NONAME;
    return real(name, service, req, pai);
}

namespace tavik::test {
namespace {

using namespace std::chrono_literals;
using Clock = std::chrono::steady_clock;
using Kind = TransportError::Kind;
using testing::HasSubstr;

constexpr long day = 86400;

/// A server that takes connections and never says anything; one with a full queue does not even
/// take them.
class DeafServer {
public:
    explicit DeafServer(bool isFull) {
        sockets.push_back(socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0));
        sockaddr_in address{};
        address.sin_family = AF_INET;
        address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
        socklen_t size = sizeof address;
        auto* const any = reinterpret_cast<sockaddr*>(&address);
        if (bind(sockets[0], any, size) != 0 || listen(sockets[0], isFull ? 0 : 8) != 0
            || getsockname(sockets[0], any, &size) != 0)
            throw std::runtime_error("cannot listen");
        port = std::to_string(ntohs(address.sin_port));
        while (isFull && sockets.size() < 8) {
            sockets.push_back(socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC | SOCK_NONBLOCK, 0));
            static_cast<void>(connect(sockets.back(), any, size));
        }
    }

    ~DeafServer() {
        for (const int descriptor : sockets)
            close(descriptor);
    }

    DeafServer(const DeafServer&) = delete;
    DeafServer& operator=(const DeafServer&) = delete;

    std::string port;

private:
    std::vector<int> sockets;
};

HTTPRequest post(const std::string& url, std::chrono::milliseconds timeout = 20s) {
    return {"POST", url, {}, "{}", timeout};
}

/// How the request ends without an answer.
TransportError failure(const HTTPSession& session, const HTTPRequest& request,
                       const std::stop_token& stop = {}) {
    try {
        session.send(request, stop);
    } catch (const TransportError& error) {
        return error;
    }
    throw std::logic_error("there is an answer");
}

HTTPSession::Options anthropicAt(const std::string& address) {
    return {{}, {"api.anthropic.com:443:" + address}};
}

class HTTPSessionTest : public testing::Test {
protected:
    std::string chat(const std::string& scenario) const {
        return server.baseURL(scenario) + "/chat/completions";
    }

    LoopbackServer server;
    HTTPSession session;
};

TEST_F(HTTPSessionTest, aFailureHasAKindAndSaysInChineseWhatToDo) {
    const HTTPSession lost(anthropicAt("unknown.test:443"));
    const DeafServer deaf(false);
    const auto expect = [](const TransportError& error, Kind kind, const char* advice) {
        EXPECT_EQ(error.kind, kind) << error.what();
        EXPECT_THAT(error.what(), HasSubstr(advice));
    };
    expect(failure(lost, post("https://api.anthropic.com/")), Kind::cannotResolve, "检查网络");
    expect(failure(session, post("http://127.0.0.1:1/")), Kind::cannotConnect, "是否已启动");
    expect(failure(session, post(chat("cut"))), Kind::interrupted, "再试一次");
    expect(failure(session, post(chat("hang-up"))), Kind::interrupted, "再试一次");
    expect(failure(session, post("http://127.0.0.1:" + deaf.port, 300ms)), Kind::timedOut, "超时");
    expect(failure(session, post(chat("drip"), 500ms)), Kind::timedOut, "超时");
}

TEST_F(HTTPSessionTest, nothingIsSentToAServerWithoutATrustedCertificateOfThatName) {
    const TemporaryDirectory directory;
    const std::string trusted = directory.file("trusted.pem");
    const TestAuthority authority("Tavik Test Authority");
    authority.write(trusted);
    const auto expect = [&](const TestAuthority& issuer, const std::string& host, long seconds,
                            const std::string& trust, bool isAccepted) {
        const std::string certificate = directory.file("server.pem");
        issuer.issue(host, seconds, certificate);
        const LoopbackServer secure(certificate);
        auto options = anthropicAt("127.0.0.1:" + std::to_string(secure.port()));
        options.certificateAuthority = trust;
        const HTTPSession client(options);
        HTTPRequest request = post("https://api.anthropic.com/good/v1/chat/completions");
        request.headers = {{"Authorization", "Bearer sk"}};
        if (isAccepted) {
            EXPECT_EQ(client.send(request).status, 200);
            return;
        }
        const TransportError error = failure(client, request);
        EXPECT_EQ(error.kind, Kind::certificate) << error.what();
        EXPECT_THAT(error.what(), HasSubstr("证书不可信"));
        EXPECT_TRUE(secure.requests().empty());
    };
    expect(authority, "api.anthropic.com", 2 * day, trusted, true);
    expect(authority, "api.anthropic.com", day - 60, trusted, false);
    expect(authority, "api.example.com", 2 * day, trusted, false);
    expect(TestAuthority("Tavik Test Authority"), "api.anthropic.com", 2 * day, trusted, false);
    expect(TestAuthority("Another Authority"), "api.anthropic.com", 2 * day, trusted, false);
    expect(authority, "api.anthropic.com", 2 * day, "", false);

    const std::string httpOnly = "https://127.0.0.1:" + std::to_string(server.port());
    EXPECT_EQ(failure(session, post(httpOnly)).kind, Kind::certificate);
}

TEST_F(HTTPSessionTest, aBodyIsReadUpToTheLimitAsItWillBeInMemory) {
    HTTPSession::Options options;
    options.maxBodySize = 1000;
    for (const char* scenario : {"huge", "bomb", "unauthorized"}) {
        const HTTPResponse response = HTTPSession(options).send(post(chat(scenario)));
        EXPECT_TRUE(response.isCutOff) << scenario;
        EXPECT_EQ(response.body.size(), 1000) << scenario;
    }
    const HTTPResponse whole = session.send(post(chat("good")));
    options.maxBodySize = whole.body.size();
    EXPECT_EQ(HTTPSession(options).send(post(chat("good"))).body, whole.body);
    EXPECT_FALSE(HTTPSession(options).send(post(chat("good"))).isCutOff);
}

TEST_F(HTTPSessionTest, aProxyHasNoPartInWhatIsOnThisMachine) {
    const auto self = std::filesystem::read_symlink("/proc/self/exe").string();
    const auto behindProxy =
        runProcess({"/usr/bin/env", "all_proxy=http://127.0.0.1:1", self,
                    "--gtest_filter=HTTPSessionTest.aFailure*:HTTPSessionTest.aBody*"});
    EXPECT_EQ(behindProxy.exitCode, 0) << behindProxy.output;
    EXPECT_THAT(behindProxy.output, HasSubstr("PASSED  ] 2 tests"));
}

TEST_F(HTTPSessionTest, stopsAtOnceWhateverItWaitsFor) {
#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
    constexpr auto allowed = 2000ms;
#else
    constexpr auto allowed = 100ms;
#endif
    const DeafServer silent(false);
    const DeafServer full(true);
    const HTTPSession slow(anthropicAt("slow.test:443"));
    isResolverHeld() = true;
    const auto expectStop = [&](const char* wait, const HTTPSession& client,
                                const std::string& url) {
        std::stop_source stop;
        Clock::time_point asked;
        const std::jthread canceller([&] {
            std::this_thread::sleep_for(200ms);
            asked = Clock::now();
            stop.request_stop();
        });
        const TransportError error = failure(client, post(url), stop.get_token());
        const auto delay = std::chrono::duration<double, std::milli>(Clock::now() - asked);
        EXPECT_EQ(error.kind, Kind::cancelled) << wait << ": " << error.what();
        EXPECT_LT(delay, allowed) << wait;
        std::cout << "stopped waiting for " << wait << " after " << delay.count() << " ms\n";
    };
    expectStop("the name", slow, "https://api.anthropic.com/");
    expectStop("the connection", session, "http://127.0.0.1:" + full.port);
    expectStop("the handshake", session, "https://127.0.0.1:" + silent.port);
    expectStop("the answer", session, "http://127.0.0.1:" + silent.port);
    expectStop("the end of the answer", session, chat("drip"));
    isResolverHeld() = false;
    isResolverHeld().notify_all();
}

TEST_F(HTTPSessionTest, nothingIsSentWhenItIsStoppedBefore) {
    std::stop_source stop;
    stop.request_stop();
    EXPECT_EQ(failure(session, post(chat("good")), stop.get_token()).kind, Kind::cancelled);
    EXPECT_TRUE(server.requests().empty());
}

} // namespace
} // namespace tavik::test
