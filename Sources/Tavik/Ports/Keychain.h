#pragma once

#include <chrono>
#include <functional>
#include <optional>
#include <string>

namespace tavik {

/// Whether secrets can be read and kept.
enum class KeychainState {
    open,
    /// The secrets are there, behind a password that has not been given.
    locked,
    /// There is no service for secrets, or it does not answer.
    unavailable,
};

/// The secrets of this program, by account. Every call is made on the main thread and returns at
/// once; the work is done elsewhere, in the order of the calls.
class Keychain {
public:
    struct Answer {
        /// Nothing when there is no such secret, or it could not be read.
        std::optional<std::string> secret;
        KeychainState state = KeychainState::unavailable;
    };

    virtual ~Keychain() = default;

    /// Reads without ever asking the user for anything. `done` is called later on the main thread.
    virtual void get(const std::string& account, std::function<void(Answer)> done) = 0;

    /// Replaces the secret; an empty one is removed. The user may be asked to unlock the secrets.
    /// `done` is called later on the main thread, with whether the secret is now kept as asked.
    virtual void set(const std::string& secret, const std::string& account,
                     std::function<void(bool isKept)> done) = 0;

    /// Waits for the secrets that are being written, at most for `limit`: for the end of the
    /// program. Nothing is called back any more.
    virtual void finish(std::chrono::milliseconds limit) = 0;
};

} // namespace tavik
