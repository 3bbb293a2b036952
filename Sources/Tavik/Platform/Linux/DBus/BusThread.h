#pragma once

#include "Platform/Linux/DBus/GLibHandles.h"

#include <chrono>
#include <functional>
#include <memory>
#include <mutex>
#include <thread>
#include <utility>
#include <vector>

namespace tavik {

/// A thread for all that talks to message buses, with an event loop of its own, so that no other
/// thread ever waits for them.
///
/// What lives there is made by `makeOn` and must be let go before this object is destroyed, which
/// takes a moment only: calls that are under way are given up.
class BusThread {
public:
    using Task = std::function<void()>;

    BusThread();
    ~BusThread();
    BusThread(const BusThread&) = delete;
    BusThread& operator=(const BusThread&) = delete;

    /// Any thread may call. Tasks run on this thread in their order, never within this call; those
    /// that wait when this object is destroyed still run. A task must not wait for anything.
    void run(Task task);

    /// Runs a task later unless the handle goes first. For this thread; so is the handle.
    SourceHandle runAfter(std::chrono::milliseconds delay, Task task);

    /// To be kept by whatever GLib will still call back on this thread, if only to let it go: the
    /// loop goes on until then. For this thread.
    std::shared_ptr<void> obligation() const { return obligations; }

private:
    struct ContextRelease {
        void operator()(GMainContext* context) const { g_main_context_unref(context); }
    };

    void loop();
    void runWaiting();
    void settle();

    std::unique_ptr<GMainContext, ContextRelease> context;
    std::shared_ptr<void> obligations = std::make_shared<char>();
    std::mutex lock;
    std::vector<Task> waiting;
    bool isStopping = false;
    std::thread thread;
};

/// Makes an object that is deleted on the bus thread, wherever its last owner lets it go. Its
/// constructor runs here.
template<typename T, typename... Arguments>
std::shared_ptr<T> makeOn(BusThread& thread, Arguments&&... arguments) {
    auto object = std::make_unique<T>(std::forward<Arguments>(arguments)...);
    return std::shared_ptr<T>(object.release(), [&thread](T* last) {
        thread.run([last] { const std::unique_ptr<T> owner(last); });
    });
}

} // namespace tavik
