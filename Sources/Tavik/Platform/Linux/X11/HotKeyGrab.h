#pragma once

#include "Platform/Linux/X11/DisplayThread.h"
#include "Platform/Linux/X11/Keyboard.h"

#include <cstdint>
#include <functional>
#include <optional>
#include <vector>

namespace tavik {

/// One combination of keys that goes to us from every window of the default screen. It stays with
/// the layout: when that changes, the keys that now write the same are taken in place of the old.
/// All but the constructor is for the display's thread.
class HotKeyGrab final : public DisplayListener {
public:
    struct Wish {
        /// For those who are told of it.
        std::int64_t number;
        xcb_keysym_t keysym;
        /// The key that is taken where none writes `keysym`.
        xcb_keycode_t placeOnKeyboard;
        /// Command 0x100, shift 0x200, option 0x800, control 0x1000.
        std::uint32_t modifiers;
    };

    enum class Notice {
        pressed,
        /// It is ours.
        held,
        /// Another program has it.
        refused,
        /// The connection broke, so nobody holds it for us any more.
        lost
    };

    using Tell = std::function<void(std::int64_t number, Notice notice)>;

    explicit HotKeyGrab(Tell tell);

    /// Gives up what was held, asks for the combination and tells the answer. What is refused is
    /// not asked for again.
    void take(const OpenDisplay& on, const Wish& combination);
    void release(const OpenDisplay& on);

    bool isHeld() const { return !held.empty(); }

    void handle(const xcb_generic_event_t& event) override;
    void disconnected() override;
    std::optional<Moment> nextMoment() const override;
    void momentHasCome() override;

private:
    struct Grab {
        xcb_keycode_t key;
        std::uint16_t modifiers;

        bool operator==(const Grab&) const = default;
    };

    struct Touch {
        xcb_keycode_t key;
        xcb_timestamp_t time;

        bool operator==(const Touch&) const = default;
    };

    using Grabs = std::vector<Grab>;

    static Grabs grabsFor(const Wish& wish, const Keyboard& keyboard);

    void notePress(const Touch& press);
    void letKeyboardGo(xcb_keycode_t key);
    void noteRelease(xcb_keycode_t key);
    bool followLayout();
    bool areFree(const Grabs& grabs);
    bool canAskInputExtension();
    bool grabAll(const Grabs& grabs) const;
    void ungrab();

    const Tell tell;
    std::optional<OpenDisplay> display;
    std::optional<bool> hasInputExtension;
    std::optional<Wish> wish;
    Grabs held;
    std::optional<Touch> lastRelease;
    /// The key of ours that has not come up since we let the keyboard go.
    std::optional<xcb_keycode_t> keyDown;
    /// When the layout, which has changed, is looked at.
    std::optional<Moment> nextLook;
};

} // namespace tavik
