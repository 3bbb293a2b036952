#include "Platform/Linux/X11/PanelReader.h"

#include <algorithm>
#include <iterator>
#include <string>

namespace tavik {
namespace {

/// Of a window manager's windows.
constexpr std::uint32_t longestList = 4096;
/// Of monitors, or of desktops.
constexpr std::uint32_t mostAreas = 64;

} // namespace

PanelReader::PanelReader(xcb_connection_t* connection, xcb_window_t root)
    : connection(connection), root(root), atoms(atomsOf(connection, atomNames, false)) {}

std::vector<ScreenRect> PanelReader::visibleFrames(const std::vector<ScreenRect>& monitors) const {
    const auto desktops = answer(ask(root, atoms.at(currentDesktop), XCB_ATOM_CARDINAL, 1));
    const std::uint32_t desktop = desktops.empty() ? 0 : desktops.front();
    auto areas = areasOfMonitors(desktop);
    const auto panels = areas.empty() ? struts() : std::vector<Strut>();
    // The area of a whole desktop tells nothing of its monitors, unless it has but one.
    if (areas.empty() && panels.empty() && monitors.size() == 1) areas = areasOfDesktop(desktop);
    const ScreenRect whole = wholeDesktop();
    std::vector<ScreenRect> frames;
    std::ranges::transform(monitors, std::back_inserter(frames), [&](const ScreenRect& monitor) {
        return panels.empty() ? withinArea(monitor, areas) : withoutStruts(monitor, panels, whole);
    });
    return frames;
}

xcb_get_property_cookie_t PanelReader::ask(xcb_window_t window, xcb_atom_t name, xcb_atom_t type,
                                           std::uint32_t count) const {
    return xcb_get_property(connection, 0, window, name, type, 0, count);
}

/// None when the window is gone or has something else under that name.
std::vector<std::uint32_t> PanelReader::answer(xcb_get_property_cookie_t request) const {
    const XCBReply<xcb_get_property_reply_t> reply(
        xcb_get_property_reply(connection, request, nullptr));
    if (!reply || reply->format != 32) return {};
    const auto* first = static_cast<const std::uint32_t*>(xcb_get_property_value(reply.get()));
    return {first, first + reply->value_len};
}

/// Some window managers tell one area for each monitor.
std::vector<ScreenRect> PanelReader::areasOfMonitors(std::uint32_t desktop) const {
    const std::string name = "_GTK_WORKAREAS_D" + std::to_string(desktop);
    const auto atom = atomsOf(connection, std::array{std::string_view(name)}, false).front();
    if (atom == XCB_NONE) return {};
    return areasOf(answer(ask(root, atom, XCB_ATOM_CARDINAL, mostAreas * 4)));
}

std::vector<ScreenRect> PanelReader::areasOfDesktop(std::uint32_t desktop) const {
    const auto areas =
        areasOf(answer(ask(root, atoms.at(workArea), XCB_ATOM_CARDINAL, mostAreas * 4)));
    if (desktop >= areas.size()) return {};
    return {areas.at(desktop)};
}

std::vector<Strut> PanelReader::struts() const {
    struct Requests {
        xcb_get_property_cookie_t partial;
        xcb_get_property_cookie_t whole;
    };

    const auto windows = answer(ask(root, atoms.at(clients), XCB_ATOM_WINDOW, longestList));
    std::vector<Requests> requests;
    std::ranges::transform(windows, std::back_inserter(requests), [this](xcb_window_t window) {
        return Requests{ask(window, atoms.at(partialStrut), XCB_ATOM_CARDINAL, 12),
                        ask(window, atoms.at(wholeStrut), XCB_ATOM_CARDINAL, 4)};
    });
    std::vector<Strut> found;
    for (const Requests& request : requests) {
        const auto partial = strutOf(answer(request.partial));
        const auto whole = strutOf(answer(request.whole));
        if (partial || whole) found.push_back(partial ? *partial : *whole);
    }
    return found;
}

ScreenRect PanelReader::wholeDesktop() const {
    const XCBReply<xcb_get_geometry_reply_t> reply(
        xcb_get_geometry_reply(connection, xcb_get_geometry(connection, root), nullptr));
    if (!reply) return {};
    return {0, 0, static_cast<double>(reply->width), static_cast<double>(reply->height)};
}

} // namespace tavik
