#include "Platform/Linux/DBus/BusThread.h"

namespace tavik {
namespace {

// GLib cannot give up every step of connecting to a bus, so the end does not wait for it for ever.
constexpr std::chrono::milliseconds settlingTime{200};

gboolean runTask(gpointer task) {
    (*static_cast<BusThread::Task*>(task))();
    return G_SOURCE_REMOVE;
}

void deleteTask(gpointer task) {
    const std::unique_ptr<BusThread::Task> owner(static_cast<BusThread::Task*>(task));
}

} // namespace

BusThread::BusThread() : context(g_main_context_new()), thread([this] { loop(); }) {}

BusThread::~BusThread() {
    run([this] { isStopping = true; });
    thread.join();
}

void BusThread::run(Task task) {
    const std::lock_guard guard(lock);
    waiting.push_back(std::move(task));
    g_main_context_wakeup(context.get());
}

SourceHandle BusThread::runAfter(std::chrono::milliseconds delay, Task task) {
    SourceHandle timer(g_timeout_source_new(static_cast<guint>(delay.count())));
    auto owner = std::make_unique<Task>(std::move(task));
    g_source_set_callback(timer.get(), runTask, owner.release(), deleteTask);
    g_source_attach(timer.get(), context.get());
    return timer;
}

void BusThread::loop() {
    g_main_context_push_thread_default(context.get());
    while (!isStopping) {
        runWaiting();
        if (!isStopping) g_main_context_iteration(context.get(), TRUE);
    }
    settle();
    g_main_context_pop_thread_default(context.get());
}

void BusThread::runWaiting() {
    std::vector<Task> tasks;
    {
        const std::lock_guard guard(lock);
        tasks.swap(waiting);
    }
    for (Task& task : tasks)
        std::exchange(task, {})();
}

void BusThread::settle() {
    bool isLate = false;
    const SourceHandle deadline = runAfter(settlingTime, [&isLate] { isLate = true; });
    runWaiting();
    while (obligations.use_count() > 1 && !isLate) {
        g_main_context_iteration(context.get(), TRUE);
        runWaiting();
    }
}

} // namespace tavik
