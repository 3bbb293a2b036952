#pragma once

#include "Platform/Linux/X11/XCBHandles.h"

#include <chrono>
#include <functional>
#include <memory>
#include <optional>
#include <utility>

namespace tavik {

/// A connection to the X server that the environment names, made at the first question and again
/// when it broke.
struct OpenDisplay {
    xcb_connection_t* connection;
    /// Of the default screen.
    xcb_window_t root;
};

/// Asks an X server from a thread of its own: libxcb waits without end for a server that is stopped
/// or grabbed, already when it connects. Any thread may ask.
class DisplayThread {
public:
    DisplayThread();
    /// A thread that still waits for the server is left behind.
    ~DisplayThread();
    DisplayThread(const DisplayThread&) = delete;
    DisplayThread& operator=(const DisplayThread&) = delete;

    /// What `question` returns; nothing when there is no server, or it did not answer in time. The
    /// question may be put twice, and may end after this call, so it must own all that it uses.
    template<typename T>
    std::optional<T> ask(std::function<T(const OpenDisplay&)> question,
                         std::chrono::milliseconds limit) {
        const auto answer = std::make_shared<std::optional<T>>();
        const bool isDone = run([answer, question = std::move(question)](
                                    const OpenDisplay& on) { *answer = question(on); },
                                limit);
        return isDone ? std::move(*answer) : std::nullopt;
    }

private:
    class Worker;
    using Work = std::function<void(const OpenDisplay&)>;

    bool run(Work work, std::chrono::milliseconds limit);

    std::shared_ptr<Worker> worker;
};

} // namespace tavik
