#include "Platform/Linux/X11/DisplayThread.h"

#include <pthread.h>

#include <condition_variable>
#include <csignal>
#include <deque>
#include <mutex>
#include <thread>

namespace tavik {
namespace {

constexpr std::chrono::milliseconds farewell{100};

} // namespace

/// Owned by the thread and by who asks, so that either may be the last.
class DisplayThread::Worker {
public:
    static std::shared_ptr<Worker> start() {
        auto worker = std::make_shared<Worker>();
        std::thread([worker] { worker->serve(); }).detach();
        return worker;
    }

    /// Whether the work was done in time; if not, it is done later or never.
    bool run(Work work, std::chrono::milliseconds limit) {
        const auto job = std::make_shared<Job>(Job{std::move(work)});
        std::unique_lock guard(lock);
        waiting.push_back(job);
        changed.notify_all();
        const bool isDone = changed.wait_for(guard, limit, [&] { return job->isDone; });
        if (!isDone) std::erase(waiting, job);
        return isDone;
    }

    void end() {
        std::unique_lock guard(lock);
        isEnding = true;
        changed.notify_all();
        changed.wait_for(guard, farewell, [this] { return hasEnded; });
    }

private:
    struct Job {
        Work work;
        bool isDone = false;
    };

    void serve() {
        pthread_setname_np(pthread_self(), "tavik-display");
        blockSignals();
        while (const auto job = next()) {
            perform(job->work);
            tell(job->isDone);
        }
        connection.reset();
        tell(hasEnded);
    }

    /// Those of the program are other threads' business, and a server that has gone is no reason to
    /// die of SIGPIPE.
    static void blockSignals() {
        sigset_t all{};
        sigfillset(&all);
        pthread_sigmask(SIG_BLOCK, &all, nullptr);
    }

    /// Null when it is time to end.
    std::shared_ptr<Job> next() {
        std::unique_lock guard(lock);
        changed.wait(guard, [this] { return isEnding || !waiting.empty(); });
        if (isEnding) return nullptr;
        auto job = waiting.front();
        waiting.pop_front();
        return job;
    }

    void tell(bool& flag) {
        const std::lock_guard guard(lock);
        flag = true;
        changed.notify_all();
    }

    /// That an old connection has broken shows only when it is used, so the work is done again on a
    /// new one.
    void perform(const Work& work) {
        for (bool isNew = false; !isNew;) {
            isNew = connection == nullptr;
            if (isNew) connection.reset(xcb_connect(nullptr, &screen));
            if (isSound()) {
                work({connection.get(), rootOf(connection.get(), screen)});
                dropEvents();
            }
            if (isSound()) return;
            connection.reset();
        }
    }

    bool isSound() const { return xcb_connection_has_error(connection.get()) == 0; }

    /// Some are sent to every program, and would heap up.
    void dropEvents() const {
        while (const XCBReply<xcb_generic_event_t> event{
            xcb_poll_for_queued_event(connection.get())}) {
        }
    }

    std::mutex lock;
    std::condition_variable changed;
    std::deque<std::shared_ptr<Job>> waiting;
    bool isEnding = false;
    bool hasEnded = false;
    // The thread's own.
    XCBConnection connection;
    int screen = 0;
};

DisplayThread::DisplayThread() : worker(Worker::start()) {}

DisplayThread::~DisplayThread() {
    worker->end();
}

bool DisplayThread::run(Work work, std::chrono::milliseconds limit) {
    return worker->run(std::move(work), limit);
}

} // namespace tavik
