#include "Platform/Linux/Secrets/SecretServiceKeychain.h"

#include "Platform/Linux/Secrets/SecretService.h"

#include <condition_variable>
#include <cstdint>
#include <deque>
#include <map>
#include <mutex>
#include <stop_token>
#include <thread>
#include <utility>

namespace tavik {
namespace {

struct Job {
    std::uint64_t number = 0;
    bool isWrite = false;
    std::string account;
    std::string secret;
};

struct Outcome {
    Keychain::Answer answer;
    bool isKept = false;
};

} // namespace

/// What waits for answers, by the number of its job. Lives on the main thread, so that what the
/// functions hold is never let go on another one.
struct SecretServiceKeychain::Callbacks {
    std::uint64_t add(std::function<void(const Outcome&)> done) {
        waiting.emplace(++last, std::move(done));
        return last;
    }

    void call(std::uint64_t number, const Outcome& outcome) {
        const auto node = waiting.extract(number);
        if (!node.empty()) node.mapped()(outcome);
    }

private:
    std::uint64_t last = 0;
    std::map<std::uint64_t, std::function<void(const Outcome&)>> waiting;
};

/// The thread that talks to the service, and the jobs that wait for it.
class SecretServiceKeychain::Worker {
public:
    Worker(MainQueue& queue, SecretServiceLimits limits, std::weak_ptr<Callbacks> callbacks)
        : queue(queue), limits(limits), callbacks(std::move(callbacks)) {}

    ~Worker() { finish(std::chrono::milliseconds(0)); }

    Worker(const Worker&) = delete;
    Worker& operator=(const Worker&) = delete;

    void add(Job job) {
        {
            const std::lock_guard guard(lock);
            if (job.isWrite) ++pendingWrites;
            jobs.push_back(std::move(job));
        }
        changed.notify_all();
    }

    /// Ends the thread: reads at once, writes when the limit has passed.
    void finish(std::chrono::milliseconds limit) {
        if (!thread.joinable()) return;
        readStop.request_stop();
        {
            std::unique_lock guard(lock);
            changed.wait_for(guard, limit, [this] { return pendingWrites == 0; });
            isEnding = true;
        }
        writeStop.request_stop();
        changed.notify_all();
        thread.join();
    }

private:
    void run() {
        std::unique_lock guard(lock);
        while (true) {
            changed.wait(guard, [this] { return isEnding || !jobs.empty(); });
            if (isEnding) return;
            const Job job = std::move(jobs.front());
            jobs.pop_front();
            guard.unlock();
            report(job.number, perform(job));
            guard.lock();
            if (job.isWrite) --pendingWrites;
            changed.notify_all();
        }
    }

    Outcome perform(const Job& job) const {
        if (job.isWrite)
            return {{}, writeSecret(job.secret, job.account, limits.write, writeStop.get_token())};
        return {readSecret(job.account, limits.read, readStop.get_token()), false};
    }

    void report(std::uint64_t number, Outcome outcome) {
        queue.post([callbacks = callbacks, number, outcome = std::move(outcome)] {
            if (const auto waiting = callbacks.lock()) waiting->call(number, outcome);
        });
    }

    MainQueue& queue;
    const SecretServiceLimits limits;
    const std::weak_ptr<Callbacks> callbacks;
    std::stop_source readStop;
    std::stop_source writeStop;
    std::mutex lock;
    std::condition_variable changed;
    std::deque<Job> jobs;
    std::size_t pendingWrites = 0;
    bool isEnding = false;
    std::thread thread{[this] { run(); }};
};

SecretServiceKeychain::SecretServiceKeychain(MainQueue& queue, SecretServiceLimits limits)
    : callbacks(std::make_shared<Callbacks>()),
      worker(std::make_unique<Worker>(queue, limits, callbacks)) {}

SecretServiceKeychain::~SecretServiceKeychain() = default;

void SecretServiceKeychain::get(const std::string& account, std::function<void(Answer)> done) {
    if (!worker) return;
    const auto number =
        callbacks->add([done = std::move(done)](const Outcome& outcome) { done(outcome.answer); });
    worker->add({number, false, account, {}});
}

void SecretServiceKeychain::set(const std::string& secret, const std::string& account,
                                std::function<void(bool isKept)> done) {
    if (!worker) return;
    const auto number =
        callbacks->add([done = std::move(done)](const Outcome& outcome) { done(outcome.isKept); });
    worker->add({number, true, account, secret});
}

void SecretServiceKeychain::finish(std::chrono::milliseconds limit) {
    if (!worker) return;
    callbacks.reset();
    worker->finish(limit);
    worker.reset();
}

} // namespace tavik
