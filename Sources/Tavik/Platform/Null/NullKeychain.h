#pragma once

#include "Ports/Keychain.h"
#include "Ports/MainQueue.h"

#include <memory>
#include <utility>

namespace tavik {

/// Keeps nothing, for a program that runs without a desktop.
class NullKeychain final : public Keychain {
public:
    /// The queue must outlive this object.
    explicit NullKeychain(MainQueue& queue) : queue(queue) {}

    void get(const std::string&, std::function<void(Answer)> done) override {
        post([done = std::move(done)] { done({}); });
    }

    void set(const std::string&, const std::string&,
             std::function<void(bool isKept)> done) override {
        post([done = std::move(done)] { done(false); });
    }

    void finish(std::chrono::milliseconds) override { alive.reset(); }

private:
    void post(MainQueue::Task task) {
        queue.post([isAlive = std::weak_ptr<void>(alive), task = std::move(task)] {
            if (!isAlive.expired()) task();
        });
    }

    MainQueue& queue;
    /// Gone when nothing is to be called back any more.
    std::shared_ptr<void> alive = std::make_shared<char>();
};

} // namespace tavik
