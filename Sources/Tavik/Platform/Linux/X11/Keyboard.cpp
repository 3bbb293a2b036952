#include "Platform/Linux/X11/Keyboard.h"

#include <X11/keysym.h>

#include <algorithm>
#include <cstddef>

namespace tavik {
namespace {

/// Where a layout's meanings of a key begin in the table of the server.
constexpr unsigned columnsOfGroup = 2;
constexpr unsigned lastKey = 255;

constexpr bool isLock(xcb_keysym_t meaning) {
    return meaning == XK_Num_Lock || meaning == XK_Scroll_Lock || meaning == XK_Caps_Lock;
}

constexpr bool isSwitchOfLayout(xcb_keysym_t meaning) {
    return meaning >= XK_ISO_Group_Latch && meaning <= XK_ISO_Last_Group_Lock;
}

} // namespace

Keyboard::Keyboard(xcb_connection_t* connection, xcb_window_t root) {
    const xcb_setup_t* setup = xcb_get_setup(connection);
    firstKey = setup->min_keycode;
    const auto keyCount = static_cast<std::uint8_t>(setup->max_keycode - setup->min_keycode + 1);
    const auto keymapRequest = xcb_query_keymap(connection);
    const auto modifierRequest = xcb_get_modifier_mapping(connection);
    const auto mappingRequest = xcb_get_keyboard_mapping(connection, firstKey, keyCount);
    const auto stateRequest = xcb_query_pointer(connection, root);
    keymap.reset(xcb_query_keymap_reply(connection, keymapRequest, nullptr));
    modifierTable.reset(xcb_get_modifier_mapping_reply(connection, modifierRequest, nullptr));
    mapping.reset(xcb_get_keyboard_mapping_reply(connection, mappingRequest, nullptr));
    const XCBReply<xcb_query_pointer_reply_t> state(
        xcb_query_pointer_reply(connection, stateRequest, nullptr));
    if (!state) return;
    modifiersInForce = state->mask & 0xffU;
    group = state->mask >> 13U & 3U;
}

xcb_keysym_t Keyboard::keysym(xcb_keycode_t key, unsigned column) const {
    if (!mapping || key < firstKey || column >= mapping->keysyms_per_keycode) return XK_VoidSymbol;
    const auto all =
        static_cast<std::size_t>(xcb_get_keyboard_mapping_keysyms_length(mapping.get()));
    const std::size_t place =
        static_cast<std::size_t>(key - firstKey) * mapping->keysyms_per_keycode + column;
    return place < all ? xcb_get_keyboard_mapping_keysyms(mapping.get())[place]
                       : xcb_keysym_t{XK_VoidSymbol};
}

std::optional<xcb_keycode_t> Keyboard::keyOfC() const {
    if (group > 1) return std::nullopt;
    for (const unsigned column : {group * columnsOfGroup, 0U})
        for (unsigned key = firstKey; key <= lastKey; ++key)
            if (keysym(static_cast<xcb_keycode_t>(key), column) == XK_c)
                return static_cast<xcb_keycode_t>(key);
    return std::nullopt;
}

std::vector<xcb_keycode_t> Keyboard::controlKeys() const {
    return keysOf(XCB_MAP_INDEX_CONTROL);
}

std::vector<xcb_keycode_t> Keyboard::keysMeaning(xcb_keysym_t meaning) const {
    std::vector<xcb_keycode_t> keys;
    for (unsigned key = firstKey; key <= lastKey; ++key)
        if (keysym(static_cast<xcb_keycode_t>(key), 0) == meaning)
            keys.push_back(static_cast<xcb_keycode_t>(key));
    return keys;
}

std::uint16_t Keyboard::modifierOf(std::initializer_list<xcb_keysym_t> meanings) const {
    for (unsigned modifier = XCB_MAP_INDEX_SHIFT; modifier <= XCB_MAP_INDEX_5; ++modifier)
        for (const xcb_keycode_t key : keysAndLocksOf(modifier))
            if (std::ranges::find(meanings, keysym(key, 0)) != meanings.end())
                return static_cast<std::uint16_t>(1U << modifier);
    return 0;
}

std::vector<xcb_keycode_t> Keyboard::keysOf(unsigned modifier) const {
    auto keys = keysAndLocksOf(modifier);
    std::erase_if(keys, [this](xcb_keycode_t key) { return isLock(keysym(key, 0)); });
    return keys;
}

std::vector<xcb_keycode_t> Keyboard::keysAndLocksOf(unsigned modifier) const {
    if (!modifierTable) return {};
    const std::size_t width = modifierTable->keycodes_per_modifier;
    const xcb_keycode_t* first =
        xcb_get_modifier_mapping_keycodes(modifierTable.get()) + modifier * width;
    std::vector<xcb_keycode_t> keys(first, first + width);
    std::erase(keys, 0);
    return keys;
}

bool Keyboard::isOf(xcb_keycode_t key, std::initializer_list<unsigned> modifiers) const {
    return std::ranges::any_of(modifiers, [&](unsigned modifier) {
        const auto keys = keysOf(modifier);
        return std::ranges::find(keys, key) != keys.end();
    });
}

bool Keyboard::isControl(xcb_keycode_t key) const {
    return isOf(key, {XCB_MAP_INDEX_CONTROL});
}

bool Keyboard::isCommandModifier(xcb_keycode_t key) const {
    return isOf(
        key, {XCB_MAP_INDEX_1, XCB_MAP_INDEX_2, XCB_MAP_INDEX_3, XCB_MAP_INDEX_4, XCB_MAP_INDEX_5});
}

bool Keyboard::makesCommands(xcb_keycode_t key) const {
    return isOf(key, {XCB_MAP_INDEX_CONTROL, XCB_MAP_INDEX_1, XCB_MAP_INDEX_4});
}

bool Keyboard::isModifier(xcb_keycode_t key) const {
    return isControl(key) || isCommandModifier(key) || isOf(key, {XCB_MAP_INDEX_SHIFT})
           || isLock(keysym(key, 0));
}

bool Keyboard::switchesLayout(xcb_keycode_t key) const {
    for (unsigned column = 0; mapping && column < mapping->keysyms_per_keycode; ++column)
        if (isSwitchOfLayout(keysym(key, column))) return true;
    return false;
}

bool Keyboard::writesNothing(xcb_keycode_t key) const {
    constexpr xcb_keysym_t firstFunction = 0xfd00;
    constexpr xcb_keysym_t lastFunction = 0xffff;
    constexpr xcb_keysym_t firstOfVendors = 0x10000000;
    const xcb_keysym_t meaning = keysym(key, 0);
    return meaning >= firstOfVendors || (meaning >= firstFunction && meaning <= lastFunction);
}

bool Keyboard::writesY(xcb_keycode_t key) const {
    return keysym(key, 0) == XK_y;
}

std::vector<xcb_keycode_t> Keyboard::heldKeys() const {
    std::vector<xcb_keycode_t> held;
    if (!keymap) return held;
    for (unsigned key = firstKey; key <= lastKey; ++key)
        if ((keymap->keys[key / 8] >> (key % 8) & 1U) != 0)
            held.push_back(static_cast<xcb_keycode_t>(key));
    return held;
}

bool Keyboard::hasLatchedModifier() const {
    const auto held = heldKeys();
    const std::initializer_list<unsigned> modifiers{XCB_MAP_INDEX_SHIFT, XCB_MAP_INDEX_1,
                                                    XCB_MAP_INDEX_4};
    return std::ranges::any_of(modifiers, [&](unsigned modifier) {
        const bool isInForce = (modifiersInForce >> modifier & 1U) != 0;
        return isInForce && std::ranges::none_of(held, [&](xcb_keycode_t key) {
                   return isOf(key, {modifier});
               });
    });
}

} // namespace tavik
