#pragma once

#include <xcb/xproto.h>

#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>
#include <vector>

namespace tavik {

/// What a selection is in one of its forms, byte for byte.
struct SelectionData {
    xcb_atom_t type = XCB_ATOM_NONE;
    /// Bits of a unit: 8, 16 or 32.
    std::uint8_t format = 8;
    std::vector<std::uint8_t> bytes;

    std::size_t unitCount() const { return bytes.size() / (format / 8U); }
};

/// All that the owner of a selection offers.
struct SelectionContents {
    struct Target {
        xcb_atom_t name = XCB_ATOM_NONE;
        /// Nothing where the owner offers it and then refuses it.
        std::optional<SelectionData> data = std::nullopt;
    };

    /// In the owner's order.
    std::vector<Target> targets;
};

using SelectionContentsRef = std::shared_ptr<const SelectionContents>;

} // namespace tavik
