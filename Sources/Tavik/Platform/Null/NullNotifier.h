#pragma once

#include "Ports/MainQueue.h"
#include "Ports/Notifier.h"

#include <utility>

namespace tavik {

/// Where nothing can be shown.
class NullNotifier final : public Notifier {
public:
    explicit NullNotifier(MainQueue& queue) : queue(queue) {}

    void notify(const Notification&) override {}

    void authorizationStatus(std::function<void(AuthorizationStatus)> done) override {
        queue.post([done = std::move(done)] { done(AuthorizationStatus::denied); });
    }

    void setOnResponse(std::function<void(const std::string& identifier)>) override {}

private:
    MainQueue& queue;
};

} // namespace tavik
