#pragma once

#include "Platform/Linux/DBus/GLibHandles.h"

#include <chrono>
#include <condition_variable>
#include <memory>
#include <mutex>

namespace tavik {

/// A connection of our own to the accessibility bus, on which calls may wait for their answers.
/// Safe from any thread.
class AtSpiConnection {
public:
    using Deadline = std::chrono::steady_clock::time_point;

    /// The connection, made at first use and anew when it broke; null when there is none to be had
    /// before the deadline.
    std::shared_ptr<GDBusConnection> before(Deadline deadline);

private:
    class Turn;

    std::mutex lock;
    std::condition_variable turnEnded;
    /// Only one thread makes the connection; the others wait for it.
    bool isTaken = false;
    std::shared_ptr<GDBusConnection> connection;
};

} // namespace tavik
