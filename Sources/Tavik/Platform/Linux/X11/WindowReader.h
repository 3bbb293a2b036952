#pragma once

#include "Base/ScreenGeometry.h"
#include "Platform/Linux/X11/Atoms.h"
#include "Platform/Linux/X11/DisplayThread.h"

#include <QString>
#include <array>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <string_view>
#include <vector>

namespace tavik {

/// Reads windows, any of which may be gone by now. A property of another type than it should have
/// counts as absent. For the thread of the display, which must outlive it.
class WindowReader {
public:
    explicit WindowReader(const OpenDisplay& display);

    /// The window that has the keyboard. A manager names none while the keyboard comes back from a
    /// window that it does not know; then it is the one with the focus, if it is a manager's.
    xcb_window_t active() const;

    /// The uppermost windows that a window manager has, at most `limit`, the uppermost one first.
    std::vector<xcb_window_t> uppermost(std::size_t limit) const;

    /// Whether it is one that people work in: no panel, no desktop, no notification.
    bool isNormal(xcb_window_t window) const;

    /// As the window says, or else as the server knows; 0 when neither does.
    std::int64_t processOf(xcb_window_t window) const;

    QString titleOf(xcb_window_t window) const;
    /// The identifier of its application.
    QString applicationOf(xcb_window_t window) const;
    QString classOf(xcb_window_t window) const;

    /// Nothing when the window is gone.
    std::optional<ScreenRect> contentsOf(xcb_window_t window) const;
    /// `contents` with the frame around it.
    ScreenRect frameOf(xcb_window_t window, const ScreenRect& contents) const;

private:
    enum AtomIndex : std::size_t {
        activeWindow,
        stackedClients,
        clients,
        windowType,
        normalType,
        dialogType,
        utilityType,
        process,
        title,
        applicationID,
        frameExtents,
        utf8Text,
        compoundText,
        atomCount
    };

    xcb_window_t focusedClient() const;

    static constexpr std::array<std::string_view, atomCount> atomNames{
        "_NET_ACTIVE_WINDOW",
        "_NET_CLIENT_LIST_STACKING",
        "_NET_CLIENT_LIST",
        "_NET_WM_WINDOW_TYPE",
        "_NET_WM_WINDOW_TYPE_NORMAL",
        "_NET_WM_WINDOW_TYPE_DIALOG",
        "_NET_WM_WINDOW_TYPE_UTILITY",
        "_NET_WM_PID",
        "_NET_WM_NAME",
        "_GTK_APPLICATION_ID",
        "_NET_FRAME_EXTENTS",
        "UTF8_STRING",
        "COMPOUND_TEXT",
    };

    using Property = XCBReply<xcb_get_property_reply_t>;

    Property read(xcb_window_t window, xcb_atom_t name, std::uint32_t words) const;
    std::vector<std::uint32_t> numbersOf(xcb_window_t window, AtomIndex name, xcb_atom_t type,
                                         std::uint32_t count) const;
    std::optional<std::uint32_t> firstNumber(xcb_window_t window, AtomIndex name,
                                             xcb_atom_t type) const;
    QString textOf(xcb_window_t window, xcb_atom_t name) const;
    QString partsOf(xcb_window_t window, xcb_atom_t name) const;

    const OpenDisplay& display;
    /// XCB_NONE stands for a name that nobody has used yet.
    std::array<xcb_atom_t, atomCount> atoms;
};

} // namespace tavik
