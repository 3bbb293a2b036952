#pragma once

#include <xcb/xcb.h>

#include <cstdlib>
#include <memory>

namespace tavik {

/// Owners of what libxcb hands out. An empty handle stands for "none".

struct Disconnect {
    void operator()(xcb_connection_t* connection) const { xcb_disconnect(connection); }
};

struct FreeReply {
    void operator()(void* reply) const { std::free(reply); } // NOLINT: allocated by libxcb
};

using XCBConnection = std::unique_ptr<xcb_connection_t, Disconnect>;
template<typename T>
using XCBReply = std::unique_ptr<T, FreeReply>;

/// The root window of a screen of the connection, which must be sound.
inline xcb_window_t rootOf(xcb_connection_t* connection, int screen) {
    auto screens = xcb_setup_roots_iterator(xcb_get_setup(connection));
    for (; screen > 0 && screens.rem > 1; --screen)
        xcb_screen_next(&screens);
    return screens.data->root;
}

} // namespace tavik
