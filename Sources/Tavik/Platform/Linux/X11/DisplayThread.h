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

/// Takes part in what happens on the connection of a `DisplayThread`, on that thread.
class DisplayListener {
public:
    using Moment = std::chrono::steady_clock::time_point;

    DisplayListener() = default;
    DisplayListener(const DisplayListener&) = delete;
    DisplayListener& operator=(const DisplayListener&) = delete;
    virtual ~DisplayListener() = default;

    /// What no question has taken.
    virtual void handle(const xcb_generic_event_t& event) = 0;

    /// The connection broke, and with it went all that belongs to it.
    virtual void disconnected() = 0;

    /// When it wants to be called though nothing happened.
    virtual std::optional<Moment> nextMoment() const = 0;
    virtual void momentHasCome() = 0;
};

/// Asks an X server from a thread of its own: libxcb waits without end for a server that is stopped
/// or grabbed, already when it connects. Any thread may ask.
class DisplayThread {
public:
    using Work = std::function<void(const OpenDisplay&)>;

    /// Without a listener nobody hears of events. Throws `std::system_error` when the system has no
    /// thread or descriptor left.
    explicit DisplayThread(const std::shared_ptr<DisplayListener>& listener = nullptr);
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

    /// Has `work` done as soon as the server and what was asked before it allow; if there is no
    /// server, never.
    void post(Work work);

private:
    class Worker;

    bool run(Work work, std::chrono::milliseconds limit);

    std::shared_ptr<Worker> worker;
};

} // namespace tavik
