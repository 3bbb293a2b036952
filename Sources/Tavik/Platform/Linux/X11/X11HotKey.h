#pragma once

#include "Ports/HotKeyRegistrar.h"
#include "Ports/MainQueue.h"

#include <memory>

namespace tavik {

/// Hot keys of the X server that $DISPLAY names: the keys that write the character in the first
/// layout, or else the key at its place on the keyboard. A combination without modifiers is
/// refused, and so is one that another program holds in whatever way.
///
/// It waits for the server for half a second at most, and takes the combination anew after the
/// connection broke.
class X11HotKey final : public HotKeyRegistrar {
public:
    /// The queue must outlive this object. Throws `std::system_error` when the system has no thread
    /// or descriptor left.
    explicit X11HotKey(MainQueue& queue);
    ~X11HotKey() override;
    X11HotKey(const X11HotKey&) = delete;
    X11HotKey& operator=(const X11HotKey&) = delete;

    bool registerHotKey(std::uint32_t keyCode, std::uint32_t modifiers) override;
    void unregisterHotKey() override;
    const Published<bool>& isRegistered() const override;

    const Published<bool>& isAsking() const override { return never; }

    void setOnPress(std::function<void()> onPress) override;

private:
    class Outlet;
    class Registration;

    Published<bool> never{false};
    std::shared_ptr<Outlet> outlet;
    std::shared_ptr<Registration> registration;
};

} // namespace tavik
