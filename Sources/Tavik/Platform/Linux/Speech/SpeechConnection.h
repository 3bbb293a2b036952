#pragma once

#include <functional>
#include <memory>
#include <string>

namespace tavik {

/// A connection to speech-dispatcher. Every call waits for the service without any limit; for one
/// thread, in a process that SIGPIPE does not end.
class SpeechConnection {
public:
    /// Starts the service if it does not run. Null if there is none.
    static std::unique_ptr<SpeechConnection> open();

    ~SpeechConnection();
    SpeechConnection(const SpeechConnection&) = delete;
    SpeechConnection& operator=(const SpeechConnection&) = delete;

    /// Ends what this connection says. False if the connection is broken.
    bool cancel();

    /// Says `text` in a voice of `language`, at `rate` times the speed that the user has set for
    /// speech-dispatcher, unless `isOutdated` once all is prepared. False if it cannot be said.
    ///
    /// Control characters and what is no UTF-8 count as spaces, and only the first 4096 bytes are
    /// said. Nothing is said in a language whose tag is none.
    bool say(const std::string& text, const std::string& language, double rate,
             const std::function<bool()>& isOutdated);

private:
    /// The library's own connection, whose type has no name that could be declared here.
    struct Handle;

    explicit SpeechConnection(std::unique_ptr<Handle> handle);

    std::unique_ptr<Handle> handle;
    int usualRate = 0;
};

} // namespace tavik
