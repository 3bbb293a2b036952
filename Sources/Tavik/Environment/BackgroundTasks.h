#pragma once

#include "Ports/MainQueue.h"

#include <functional>
#include <list>
#include <memory>
#include <stop_token>
#include <thread>
#include <utility>

namespace tavik {

/// Keeps a task that runs in the background; with it goes the wish for its result.
class [[nodiscard]] BackgroundTask {
public:
    BackgroundTask() = default;

    explicit BackgroundTask(std::shared_ptr<std::stop_source> source) : source(std::move(source)) {}

    BackgroundTask(const BackgroundTask&) = delete;
    BackgroundTask& operator=(const BackgroundTask&) = delete;
    BackgroundTask(BackgroundTask&&) = default;

    BackgroundTask& operator=(BackgroundTask&& other) noexcept {
        cancel();
        source = std::move(other.source);
        return *this;
    }

    ~BackgroundTask() { cancel(); }

    /// The work is asked to stop, and its result will not be delivered. Waits for nothing.
    void cancel() {
        if (source) source->request_stop();
        source.reset();
    }

private:
    std::shared_ptr<std::stop_source> source;
};

/// Does what takes time on threads of its own. For the main thread.
class BackgroundTasks {
public:
    /// The queue must outlive it.
    explicit BackgroundTasks(MainQueue& queue) : queue(queue) {}

    ~BackgroundTasks() { finish(); }

    BackgroundTasks(const BackgroundTasks&) = delete;
    BackgroundTasks& operator=(const BackgroundTasks&) = delete;

    /// Asks all tasks to stop, and waits for them.
    void finish();

    /// Whether any work goes on, cancelled or not.
    bool isBusy() const;

    /// Does `work` on another thread and then calls `done` with its result on the main thread,
    /// unless the task was cancelled before. The work must not throw.
    template<typename Result>
    BackgroundTask start(std::function<Result(const std::stop_token&)> work,
                         std::function<void(Result)> done) {
        auto source = std::make_shared<std::stop_source>();
        run(source, [this, source, work = std::move(work), done = std::move(done)] {
            auto result = std::make_shared<Result>(work(source->get_token()));
            queue.post([source, result, done] {
                if (!source->stop_requested()) done(std::move(*result));
            });
        });
        return BackgroundTask(std::move(source));
    }

private:
    struct Worker;

    struct WorkerDeletion {
        void operator()(Worker* worker) const;
    };

    void run(const std::shared_ptr<std::stop_source>& source, std::function<void()> body);

    MainQueue& queue;
    std::list<std::unique_ptr<Worker, WorkerDeletion>> workers;
};

} // namespace tavik
