#include "Platform/Linux/Speech/SpeechDispatcher.h"

#include "Platform/Linux/Speech/SpeechConnection.h"

#include <condition_variable>
#include <csignal>
#include <mutex>
#include <optional>
#include <thread>
#include <utility>

namespace tavik {
namespace {

using Clock = std::chrono::steady_clock;

constexpr std::size_t maxAbandoned = 3;

/// For the last word to be cut off when the program ends.
constexpr std::chrono::milliseconds farewell{30};

struct Utterance {
    std::string text;
    std::string language;
    double rate = 1;
};

/// What to say, after what is being said was ended; nothing to end it only.
using Request = std::optional<Utterance>;

/// The library writes to its socket without a thought for a service that has gone. With a handler,
/// unlike a signal that is blocked or ignored, the programs that it starts have the default again.
void surviveBrokenPipes() {
    struct sigaction action {};

    sigaction(SIGPIPE, nullptr, &action);
    if (action.sa_handler != SIG_DFL) return;
    action.sa_handler = [](int) {};
    action.sa_flags = SA_RESTART;
    sigaction(SIGPIPE, &action, nullptr);
}

} // namespace

/// A thread with a connection, and the request that waits for it. Owned by both threads, so that
/// either may be the last. All calls but `start`'s thread are the main thread's.
class SpeechDispatcher::Worker {
public:
    Worker(MainQueue& queue, std::weak_ptr<bool> hasWorked)
        : queue(&queue), hasWorked(std::move(hasWorked)) {}

    static std::shared_ptr<Worker> start(MainQueue& queue, std::weak_ptr<bool> hasWorked) {
        auto worker = std::make_shared<Worker>(queue, std::move(hasWorked));
        std::thread([worker] { worker->run(); }).detach();
        return worker;
    }

    void add(Request request) {
        const std::lock_guard guard(lock);
        waiting = std::move(request);
        changed.notify_all();
    }

    bool isBusyFor(std::chrono::milliseconds time) const {
        const std::lock_guard guard(lock);
        return busySince && Clock::now() - *busySince > time;
    }

    /// Lets the thread end by itself, in silence. The main queue is not touched any more.
    void abandon() {
        const std::lock_guard guard(lock);
        waiting = Request();
        queue = nullptr;
        isEnding = true;
        changed.notify_all();
    }

    void waitUntilEnded(std::chrono::milliseconds limit) {
        std::unique_lock guard(lock);
        changed.wait_for(guard, limit, [this] { return hasEnded; });
    }

private:
    void run() {
        pthread_setname_np(pthread_self(), "tavik-speech");
        surviveBrokenPipes();
        while (const std::optional<Request> request = next())
            done(*request, perform(*request));
        connection.reset();
        const std::lock_guard guard(lock);
        hasEnded = true;
        changed.notify_all();
    }

    /// Nothing when it is time to end.
    std::optional<Request> next() {
        std::unique_lock guard(lock);
        changed.wait(guard, [this] { return isEnding || waiting; });
        if (waiting) busySince = Clock::now();
        return std::exchange(waiting, std::nullopt);
    }

    bool perform(const Request& request) {
        if (connection && performOn(*connection, request)) return true;
        connection.reset();
        if (!request) return true;
        // The service may have ended since the last time, which takes a new connection only.
        connection = SpeechConnection::open();
        if (connection && performOn(*connection, request)) return true;
        connection.reset();
        return false;
    }

    bool performOn(SpeechConnection& on, const Request& request) const {
        if (!on.cancel()) return false;
        return !request || on.say(request->text, request->language, request->rate, [this] {
            const std::lock_guard guard(lock);
            return waiting.has_value();
        });
    }

    void done(const Request& request, bool isSuccess) {
        const std::lock_guard guard(lock);
        busySince.reset();
        if (!request || queue == nullptr) return;
        queue->post([hasWorked = hasWorked, isSuccess] {
            if (const auto flag = hasWorked.lock()) *flag = isSuccess;
        });
    }

    std::unique_ptr<SpeechConnection> connection;
    mutable std::mutex lock;
    std::condition_variable changed;
    MainQueue* queue;
    const std::weak_ptr<bool> hasWorked;
    std::optional<Request> waiting;
    std::optional<Clock::time_point> busySince;
    bool isEnding = false;
    bool hasEnded = false;
};

SpeechDispatcher::SpeechDispatcher(MainQueue& queue, std::chrono::milliseconds patience)
    : queue(queue), patience(patience) {}

SpeechDispatcher::~SpeechDispatcher() {
    if (!worker) return;
    worker->abandon();
    worker->waitUntilEnded(farewell);
}

void SpeechDispatcher::speak(const std::string& text, const std::string& language, double rate) {
    if (prepareWorker()) worker->add(Utterance{text, language, rate});
}

void SpeechDispatcher::stop() {
    if (worker) worker->add(Request());
}

bool SpeechDispatcher::isAvailable() const {
    return *hasWorked && !isStuck();
}

bool SpeechDispatcher::isStuck() const {
    return worker && worker->isBusyFor(patience);
}

/// False when there are too many threads that do not come back.
bool SpeechDispatcher::prepareWorker() {
    if (isStuck()) {
        *hasWorked = false;
        worker->abandon();
        abandoned.push_back(worker);
        worker.reset();
    }
    std::erase_if(abandoned, [](const auto& thread) { return thread.expired(); });
    if (!worker && abandoned.size() < maxAbandoned) worker = Worker::start(queue, hasWorked);
    return worker != nullptr;
}

} // namespace tavik
