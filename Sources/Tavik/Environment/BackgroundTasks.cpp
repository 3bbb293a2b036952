#include "Environment/BackgroundTasks.h"

#include <algorithm>
#include <atomic>

namespace tavik {

struct BackgroundTasks::Worker {
    std::shared_ptr<std::stop_source> source;
    std::atomic<bool> hasEnded = false;
    std::jthread thread;
};

void BackgroundTasks::WorkerDeletion::operator()(Worker* worker) const {
    const std::unique_ptr<Worker> owner(worker);
}

void BackgroundTasks::finish() {
    for (const auto& worker : workers)
        worker->source->request_stop();
    workers.clear();
}

bool BackgroundTasks::isBusy() const {
    return std::ranges::any_of(workers, [](const auto& worker) { return !worker->hasEnded; });
}

void BackgroundTasks::run(const std::shared_ptr<std::stop_source>& source,
                          std::function<void()> body) {
    std::erase_if(workers, [](const auto& worker) { return worker->hasEnded.load(); });
    workers.emplace_back(std::make_unique<Worker>().release());
    Worker& worker = *workers.back();
    worker.source = source;
    worker.thread = std::jthread([&worker, body = std::move(body)] {
        body();
        worker.hasEnded = true;
    });
}

} // namespace tavik
