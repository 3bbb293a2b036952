#include "Platform/Linux/X11/DisplayThread.h"

#include <poll.h>
#include <pthread.h>
#include <sys/eventfd.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <condition_variable>
#include <csignal>
#include <cstdint>
#include <deque>
#include <mutex>
#include <system_error>
#include <thread>

namespace tavik {
namespace {

constexpr std::chrono::milliseconds farewell{100};

/// libXau, through which libxcb finds its way in, keeps what it reads in one place for all threads.
XCBConnection connect(int& screen) {
    static std::mutex oneAtATime;
    const std::lock_guard guard(oneAtATime);
    return XCBConnection(xcb_connect(nullptr, &screen));
}

/// Ends a wait of another thread.
class Bell {
public:
    Bell() : descriptor(eventfd(0, EFD_CLOEXEC | EFD_NONBLOCK)) {
        if (descriptor < 0) throw std::system_error(errno, std::generic_category(), "eventfd");
    }

    ~Bell() { close(descriptor); }

    Bell(const Bell&) = delete;
    Bell& operator=(const Bell&) = delete;

    void ring() const { static_cast<void>(eventfd_write(descriptor, 1)); }

    void silence() const {
        eventfd_t ignored = 0;
        static_cast<void>(eventfd_read(descriptor, &ignored));
    }

    pollfd toPoll() const { return {descriptor, POLLIN, 0}; }

private:
    int descriptor;
};

} // namespace

/// Owned by the thread and by who asks, so that either may be the last.
class DisplayThread::Worker {
public:
    explicit Worker(std::shared_ptr<DisplayListener> listener) : listener(std::move(listener)) {}

    static std::shared_ptr<Worker> start(const std::shared_ptr<DisplayListener>& listener) {
        auto worker = std::make_shared<Worker>(listener);
        std::thread([worker] { worker->serve(); }).detach();
        return worker;
    }

    /// Whether the work was done in time; if not, it is done later or never.
    bool run(Work work, std::chrono::milliseconds limit) {
        const auto job = std::make_shared<Job>(Job{std::move(work)});
        std::unique_lock guard(lock);
        add(job);
        const bool isDone = changed.wait_for(guard, limit, [&] { return job->isDone; });
        if (!isDone) std::erase(waiting, job);
        return isDone;
    }

    void post(Work work) {
        const std::lock_guard guard(lock);
        add(std::make_shared<Job>(Job{std::move(work)}));
    }

    void end() {
        std::unique_lock guard(lock);
        isEnding = true;
        bell.ring();
        changed.wait_for(guard, farewell, [this] { return hasEnded; });
    }

private:
    struct Job {
        Work work;
        bool isDone = false;
    };

    void add(const std::shared_ptr<Job>& job) {
        waiting.push_back(job);
        bell.ring();
    }

    void serve() {
        pthread_setname_np(pthread_self(), "tavik-display");
        blockSignals();
        while (!hasToEnd())
            if (const auto job = next()) {
                perform(job->work);
                tell(job->isDone);
            } else {
                listen();
                wait();
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

    /// What is posted is done before the end.
    bool hasToEnd() {
        const std::lock_guard guard(lock);
        return isEnding && waiting.empty();
    }

    std::shared_ptr<Job> next() {
        const std::lock_guard guard(lock);
        if (waiting.empty()) return nullptr;
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
            if (isNew) connection = connect(screen);
            if (isSound()) work({connection.get(), rootOf(connection.get(), screen)});
            if (isSound()) return;
            drop();
        }
    }

    bool isSound() const { return xcb_connection_has_error(connection.get()) == 0; }

    void drop() {
        connection.reset();
        if (listener) listener->disconnected();
    }

    /// Some events are sent to every program, and would heap up where nobody took them.
    void listen() {
        if (!connection) return;
        isBusy = !takeEvents();
        const auto moment = listener ? listener->nextMoment() : std::nullopt;
        if (moment && *moment <= DisplayListener::Moment::clock::now()) listener->momentHasCome();
        xcb_flush(connection.get());
        // What a flush has read from the server does not end a wait any more.
        while (const XCBReply<xcb_generic_event_t> event{
            xcb_poll_for_queued_event(connection.get())}) {
            if (listener) listener->handle(*event);
            isBusy = true;
        }
        if (!isSound()) drop();
    }

    /// Whether that was all there are: a flood of them must not keep others waiting.
    bool takeEvents() const {
        constexpr int most = 1000;
        for (int i = 0; i < most; ++i) {
            const XCBReply<xcb_generic_event_t> event{xcb_poll_for_event(connection.get())};
            if (!event) return true;
            if (listener) listener->handle(*event);
        }
        return false;
    }

    void wait() const {
        const int server = connection ? xcb_get_file_descriptor(connection.get()) : -1;
        std::array<pollfd, 2> both{bell.toPoll(), pollfd{server, POLLIN, 0}};
        poll(both.data(), both.size(), timeToNextMoment());
        bell.silence();
    }

    /// In milliseconds, rounded up; -1 when there is none.
    int timeToNextMoment() const {
        if (connection && isBusy) return 0;
        const auto moment = listener && connection ? listener->nextMoment() : std::nullopt;
        if (!moment) return -1;
        const auto left = std::chrono::ceil<std::chrono::milliseconds>(
            *moment - DisplayListener::Moment::clock::now());
        return static_cast<int>(std::clamp<std::int64_t>(left.count(), 0, 60'000));
    }

    std::mutex lock;
    std::condition_variable changed;
    std::deque<std::shared_ptr<Job>> waiting;
    bool isEnding = false;
    bool hasEnded = false;
    Bell bell;
    // The thread's own.
    std::shared_ptr<DisplayListener> listener;
    XCBConnection connection;
    int screen = 0;
    /// Whether there may be events that no wait would notice.
    bool isBusy = false;
};

DisplayThread::DisplayThread(const std::shared_ptr<DisplayListener>& listener)
    : worker(Worker::start(listener)) {}

DisplayThread::~DisplayThread() {
    worker->end();
}

void DisplayThread::post(Work work) {
    worker->post(std::move(work));
}

bool DisplayThread::run(Work work, std::chrono::milliseconds limit) {
    return worker->run(std::move(work), limit);
}

} // namespace tavik
