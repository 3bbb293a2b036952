#pragma once

#include "Base/ScreenGeometry.h"
#include "Platform/Linux/X11/Atoms.h"
#include "Platform/Linux/X11/PanelSpace.h"

#include <cstdint>
#include <vector>

namespace tavik {

/// What the window manager and the panels tell about the space that windows should keep to. Waits
/// for the server a few times at most, however many windows there are.
class PanelReader {
public:
    PanelReader(xcb_connection_t* connection, xcb_window_t root);

    /// For each of the monitors, which are all there are, in their order.
    std::vector<ScreenRect> visibleFrames(const std::vector<ScreenRect>& monitors) const;

private:
    enum AtomIndex : std::size_t {
        clients,
        currentDesktop,
        workArea,
        partialStrut,
        wholeStrut,
        atomCount
    };

    static constexpr std::array<std::string_view, atomCount> atomNames{
        "_NET_CLIENT_LIST",      "_NET_CURRENT_DESKTOP", "_NET_WORKAREA",
        "_NET_WM_STRUT_PARTIAL", "_NET_WM_STRUT",
    };

    xcb_get_property_cookie_t ask(xcb_window_t window, xcb_atom_t name, xcb_atom_t type,
                                  std::uint32_t count) const;
    std::vector<std::uint32_t> answer(xcb_get_property_cookie_t request) const;
    std::vector<ScreenRect> areasOfMonitors(std::uint32_t desktop) const;
    std::vector<ScreenRect> areasOfDesktop(std::uint32_t desktop) const;
    std::vector<Strut> struts() const;
    ScreenRect wholeDesktop() const;

    xcb_connection_t* connection;
    xcb_window_t root;
    /// XCB_NONE stands for a name that nobody has used yet.
    std::array<xcb_atom_t, atomCount> atoms;
};

} // namespace tavik
