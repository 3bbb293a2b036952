#pragma once

#include "Ports/Keychain.h"
#include "Ports/MainQueue.h"

#include <chrono>
#include <memory>

namespace tavik {

struct SecretServiceLimits {
    std::chrono::milliseconds read{1500};
    /// The user may be looking for a password.
    std::chrono::milliseconds write{60'000};
};

/// The secrets in the desktop's own service for them, such as GNOME Keyring or KWallet, under the
/// service name "com.tavik.app".
///
/// A thread of its own does the work. A service that is missing, locked or hung costs the limits
/// above and is asked anew by the next call. Destruction and `finish` give up what is under way
/// then, which takes a third of a second in the worst case; later calls do nothing.
class SecretServiceKeychain final : public Keychain {
public:
    /// The queue must outlive this object.
    explicit SecretServiceKeychain(MainQueue& queue, SecretServiceLimits limits = {});
    ~SecretServiceKeychain() override;
    SecretServiceKeychain(const SecretServiceKeychain&) = delete;
    SecretServiceKeychain& operator=(const SecretServiceKeychain&) = delete;

    void get(const std::string& account, std::function<void(Answer)> done) override;
    void set(const std::string& secret, const std::string& account,
             std::function<void(bool isKept)> done) override;
    void finish(std::chrono::milliseconds limit) override;

private:
    struct Callbacks;
    class Worker;

    std::shared_ptr<Callbacks> callbacks;
    std::unique_ptr<Worker> worker;
};

} // namespace tavik
