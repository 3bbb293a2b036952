#pragma once

#include "Platform/Linux/X11/Keyboard.h"
#include "Platform/Linux/X11/SelectionWindow.h"

#include <optional>
#include <set>

namespace tavik {

/// Notices whether the user does something that may be a copy: a button, keys with Ctrl, Alt or the
/// super key, keys that write nothing, and the "y" of programs that are used like vi. For the
/// display's thread.
class UserActivity {
public:
    explicit UserActivity(const SelectionWindow& window);
    ~UserActivity() = default;
    UserActivity(const UserActivity&) = delete;
    UserActivity& operator=(const UserActivity&) = delete;

    /// From now on; what has been pressed before does not count, nor what is held.
    void start();
    void stop();

    bool isWatched() const { return isRunning; }

    void handle(const xcb_generic_event_t& event);

    /// Since the start. Where the server cannot tell, it has not been.
    bool hasBeen() const { return noticed > 0; }

    /// The last key was for us.
    void forgiveLastKey();

private:
    void select(std::uint32_t events) const;
    bool mayCopy(xcb_keycode_t key);
    void note(bool isKey);

    const SelectionWindow& window;
    std::uint8_t extension = 0;
    bool isRunning = false;
    std::optional<Keyboard> keyboard;
    /// Of the keys that make others commands: those that are held, and whether one was pressed
    /// since the last other key, as it may be held by the server in its place.
    std::set<xcb_keycode_t> held;
    bool isArmed = false;
    int noticed = 0;
    bool wasKey = false;
};

} // namespace tavik
