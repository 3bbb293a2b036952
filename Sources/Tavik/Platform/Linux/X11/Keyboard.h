#pragma once

#include "Platform/Linux/X11/XCBHandles.h"

#include <cstdint>
#include <initializer_list>
#include <optional>
#include <vector>

namespace tavik {

/// The keyboard at one moment: what its keys mean and which are down.
class Keyboard {
public:
    Keyboard(xcb_connection_t* connection, xcb_window_t root);

    /// The key that writes "c" in the layout in use, or else in the first. Nothing in a third or
    /// fourth layout, of which the server's table does not tell.
    std::optional<xcb_keycode_t> keyOfC() const;
    std::vector<xcb_keycode_t> controlKeys() const;
    /// The keys that mean this in the first layout, without Shift.
    std::vector<xcb_keycode_t> keysMeaning(xcb_keysym_t meaning) const;
    /// The bit of the first modifier that a key with one of these meanings makes; 0 when none does.
    std::uint16_t modifierOf(std::initializer_list<xcb_keysym_t> meanings) const;

    /// Whether it changes what other keys do, while it is held.
    bool isModifier(xcb_keycode_t key) const;
    bool isControl(xcb_keycode_t key) const;
    /// Whether it is one of Alt, the super key and their like.
    bool isCommandModifier(xcb_keycode_t key) const;
    /// Whether other keys are commands with it: Ctrl, Alt and the super key.
    bool makesCommands(xcb_keycode_t key) const;
    /// Whether it switches between layouts, alone or with another modifier.
    bool switchesLayout(xcb_keycode_t key) const;
    bool writesNothing(xcb_keycode_t key) const;
    bool writesY(xcb_keycode_t key) const;

    /// In the order of their numbers.
    std::vector<xcb_keycode_t> heldKeys() const;
    /// Whether shift, Alt or the super key is in force though no key of it is held.
    bool hasLatchedModifier() const;

private:
    xcb_keysym_t keysym(xcb_keycode_t key, unsigned column) const;
    std::vector<xcb_keycode_t> keysOf(unsigned modifier) const;
    std::vector<xcb_keycode_t> keysAndLocksOf(unsigned modifier) const;
    bool isOf(xcb_keycode_t key, std::initializer_list<unsigned> modifiers) const;

    XCBReply<xcb_query_keymap_reply_t> keymap;
    XCBReply<xcb_get_modifier_mapping_reply_t> modifierTable;
    XCBReply<xcb_get_keyboard_mapping_reply_t> mapping;
    xcb_keycode_t firstKey;
    /// The modifiers that are in force, one bit each.
    unsigned modifiersInForce = 0;
    /// Of the layouts that the user switches between.
    unsigned group = 0;
};

} // namespace tavik
