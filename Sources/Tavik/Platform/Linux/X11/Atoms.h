#pragma once

#include "Platform/Linux/X11/XCBHandles.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>
#include <string_view>

namespace tavik {

/// The atoms of these names. Without `isCreating`, XCB_NONE stands for a name that nobody has used
/// yet.
template<std::size_t count>
std::array<xcb_atom_t, count> atomsOf(xcb_connection_t* connection,
                                      const std::array<std::string_view, count>& names,
                                      bool isCreating) {
    std::array<xcb_intern_atom_cookie_t, count> requests{};
    std::transform(names.begin(), names.end(), requests.begin(), [&](std::string_view name) {
        const auto length = static_cast<std::uint16_t>(name.size());
        return xcb_intern_atom(connection, isCreating ? 0 : 1, length, name.data());
    });
    std::array<xcb_atom_t, count> atoms{};
    std::transform(requests.begin(), requests.end(), atoms.begin(), [&](const auto& request) {
        const XCBReply<xcb_intern_atom_reply_t> reply(
            xcb_intern_atom_reply(connection, request, nullptr));
        return reply ? reply->atom : xcb_atom_t{XCB_NONE};
    });
    return atoms;
}

} // namespace tavik
