#pragma once

#include "Platform/Linux/X11/DisplayThread.h"

#include <memory>
#include <optional>

namespace tavik {

/// The X server's clock, in milliseconds, read on a connection of its own.
class ServerClock {
public:
    ServerClock();
    ~ServerClock();
    ServerClock(const ServerClock&) = delete;
    ServerClock& operator=(const ServerClock&) = delete;

    /// Nothing when the server does not tell within a fifth of a second. Any thread may ask.
    std::optional<xcb_timestamp_t> now();

private:
    class Reader;

    std::shared_ptr<Reader> reader;
    DisplayThread display;
};

} // namespace tavik
