#pragma once

#include <xcb/xcb.h>

#include <cstdint>

namespace tavik {

/// What this process holds at one moment.
struct Holdings {
    std::int64_t residentKilobytes = 0;
    /// What is allocated at present, whatever the allocator keeps beside it.
    std::int64_t heapKilobytes = 0;
    std::int64_t descriptors = 0;
    std::int64_t threads = 0;
    /// In the X server, through all of the process's connections.
    std::int64_t windows = 0;
    /// Windows, pixmaps, graphics contexts, pictures and all else.
    std::int64_t resources = 0;
};

/// The connection asks the server and may be any. What the server does not tell is 0.
Holdings presentHoldings(xcb_connection_t* connection);

} // namespace tavik
