#include "Platform/Linux/X11/X11WindowSystem.h"

#include "Platform/Linux/X11/Atoms.h"
#include "Platform/Linux/X11/Monitors.h"
#include "Platform/Linux/X11/PanelReader.h"

#include <xcb/xfixes.h>

#include <QGuiApplication>
#include <QScreen>
#include <algorithm>
#include <array>
#include <bit>
#include <cmath>
#include <cstdlib>
#include <limits>
#include <string>

namespace tavik {
namespace {

xcb_connection_t* connectionOfQt() {
    return qGuiApp->nativeInterface<QNativeInterface::QX11Application>()->connection();
}

int defaultScreen() {
    char* host = nullptr;
    int display = 0;
    int screen = 0;
    const int isParsed = xcb_parse_display(nullptr, &host, &display, &screen);
    const XCBReply<char> owned(host);
    return isParsed != 0 ? screen : 0;
}

/// Whether windows can have another shape for clicks than for the eye.
bool hasInputShapes(xcb_connection_t* connection) {
    const auto* extension = xcb_get_extension_data(connection, &xcb_xfixes_id);
    if (extension == nullptr || extension->present == 0) return false;
    const auto request =
        xcb_xfixes_query_version(connection, XCB_XFIXES_MAJOR_VERSION, XCB_XFIXES_MINOR_VERSION);
    const XCBReply<xcb_xfixes_query_version_reply_t> reply(
        xcb_xfixes_query_version_reply(connection, request, nullptr));
    return reply && reply->major_version >= 2;
}

/// Qt leaves the corner of a screen where it is.
double scaleAt(const ScreenRect& frame) {
    const QPoint corner(qRound(frame.x), qRound(frame.y));
    const auto screens = QGuiApplication::screens();
    const auto found = std::ranges::find_if(
        screens, [&](const QScreen* screen) { return screen->geometry().topLeft() == corner; });
    return found == screens.end() ? qGuiApp->devicePixelRatio() : (*found)->devicePixelRatio();
}

/// The pixels that the part touches, as far as the window system can tell them.
xcb_rectangle_t wholePixels(const ScreenRect& part) {
    const auto clamped = [](double value) {
        constexpr double furthest = std::numeric_limits<std::int16_t>::max();
        return std::clamp(value, 0.0, furthest);
    };
    const double left = clamped(std::floor(part.x));
    const double top = clamped(std::floor(part.y));
    const double right = clamped(std::ceil(part.x + part.width));
    const double bottom = clamped(std::ceil(part.y + part.height));
    return {static_cast<std::int16_t>(left), static_cast<std::int16_t>(top),
            static_cast<std::uint16_t>(right - left), static_cast<std::uint16_t>(bottom - top)};
}

} // namespace

X11WindowSystem::X11WindowSystem()
    : connection(connectionOfQt()), screenNumber(defaultScreen()),
      root(rootOf(connection, screenNumber)), canLimitClicks(hasInputShapes(connection)) {}

std::vector<Screen> X11WindowSystem::screens() {
    const std::vector<ScreenRect> frames = monitorsOf(connection, root);
    const auto visible = PanelReader(connection, root).visibleFrames(frames);
    std::vector<Screen> found;
    for (std::size_t i = 0; i < frames.size(); ++i)
        found.push_back({frames.at(i), visible.at(i), scaleAt(frames.at(i))});
    return found;
}

ScreenPoint X11WindowSystem::pointer() {
    const XCBReply<xcb_query_pointer_reply_t> reply(
        xcb_query_pointer_reply(connection, xcb_query_pointer(connection, root), nullptr));
    if (!reply) return {};
    return {static_cast<double>(reply->root_x), static_cast<double>(reply->root_y)};
}

bool X11WindowSystem::hasCompositor() {
    const std::string name = "_NET_WM_CM_S" + std::to_string(screenNumber);
    const auto selection = atomsOf(connection, std::array{std::string_view(name)}, false).front();
    if (selection == XCB_NONE) return false;
    const auto request = xcb_get_selection_owner(connection, selection);
    const XCBReply<xcb_get_selection_owner_reply_t> reply(
        xcb_get_selection_owner_reply(connection, request, nullptr));
    return reply && reply->owner != XCB_NONE;
}

void X11WindowSystem::limitClicks(std::uint32_t window, const ScreenRect& part) {
    if (!canLimitClicks) return;
    const xcb_rectangle_t pixels = wholePixels(part);
    const xcb_xfixes_region_t region = xcb_generate_id(connection);
    xcb_xfixes_create_region(connection, region, 1, &pixels);
    xcb_xfixes_set_window_shape_region(connection, window, XCB_SHAPE_SK_INPUT, 0, 0, region);
    xcb_xfixes_destroy_region(connection, region);
    xcb_flush(connection);
}

void X11WindowSystem::takeKeyboard(std::uint32_t window) {
    const auto present = focus();
    if (present && present->window != window && !takers.contains(present->window)) former = present;
    takers.insert(window);
    // A window manager that moves the keyboard just now makes a time that was asked for before a
    // past one, which the server passes over.
    constexpr int mostAttempts = 3;
    for (int attempt = 0; attempt < mostAttempts && !hasKeyboard(window); ++attempt) {
        takenAt = clock.now().value_or(XCB_CURRENT_TIME);
        if (!setFocus({window, XCB_INPUT_FOCUS_PARENT})) return;
    }
}

bool X11WindowSystem::hasKeyboard(xcb_window_t window) const {
    const auto present = focus();
    return present && present->window == window;
}

/// With the time at which the keyboard was taken, so that whatever a window manager has done since,
/// or does for a click that came since, goes before.
void X11WindowSystem::returnKeyboard(std::uint32_t window) {
    takers.erase(window);
    const auto present = focus();
    if (!present || !contains(window, present->window)) return;
    if (former && setFocus(*former)) return;
    const xcb_window_t active = activeWindow();
    if (active != XCB_NONE && setFocus({active, XCB_INPUT_FOCUS_POINTER_ROOT})) return;
    static_cast<void>(setFocus({XCB_INPUT_FOCUS_POINTER_ROOT, XCB_INPUT_FOCUS_POINTER_ROOT}));
}

/// Qt asks too, but as a program by itself and with the time of the last event that it saw, which a
/// window manager may find older than what the user has done elsewhere since.
void X11WindowSystem::bringToFront(std::uint32_t window) {
    constexpr std::uint32_t byTheUser = 2;
    xcb_client_message_event_t wish{};
    wish.response_type = XCB_CLIENT_MESSAGE;
    wish.format = 32;
    wish.window = window;
    wish.type =
        atomsOf(connection, std::array{std::string_view("_NET_ACTIVE_WINDOW")}, false).front();
    wish.data.data32[0] = byTheUser;
    wish.data.data32[1] = clock.now().value_or(XCB_CURRENT_TIME);
    const auto receivers =
        XCB_EVENT_MASK_SUBSTRUCTURE_NOTIFY | XCB_EVENT_MASK_SUBSTRUCTURE_REDIRECT;
    // The library takes the event as the bytes that are sent.
    const auto bytes = std::bit_cast<std::array<char, sizeof wish>>(wish);
    xcb_send_event(connection, 0, root, receivers, bytes.data());
    xcb_flush(connection);
}

std::optional<X11WindowSystem::Focus> X11WindowSystem::focus() const {
    const XCBReply<xcb_get_input_focus_reply_t> reply(
        xcb_get_input_focus_reply(connection, xcb_get_input_focus(connection), nullptr));
    if (!reply) return std::nullopt;
    return Focus{reply->focus, reply->revert_to};
}

/// False when there is no such window any more, or nobody can see it.
bool X11WindowSystem::setFocus(const Focus& focus) const {
    const auto request =
        xcb_set_input_focus_checked(connection, focus.revertTo, focus.window, takenAt);
    return !XCBReply<xcb_generic_error_t>(xcb_request_check(connection, request));
}

/// Whether `inner` is the window or lies in it at any depth.
bool X11WindowSystem::contains(xcb_window_t window, xcb_window_t inner) const {
    while (inner != window) {
        if (inner == XCB_NONE || inner == XCB_INPUT_FOCUS_POINTER_ROOT || inner == root)
            return false;
        const XCBReply<xcb_query_tree_reply_t> reply(
            xcb_query_tree_reply(connection, xcb_query_tree(connection, inner), nullptr));
        inner = reply ? reply->parent : xcb_window_t{XCB_NONE};
    }
    return true;
}

xcb_window_t X11WindowSystem::activeWindow() const {
    const auto name =
        atomsOf(connection, std::array{std::string_view("_NET_ACTIVE_WINDOW")}, false).front();
    const auto request = xcb_get_property(connection, 0, root, name, XCB_ATOM_WINDOW, 0, 1);
    const XCBReply<xcb_get_property_reply_t> reply(
        xcb_get_property_reply(connection, request, nullptr));
    if (!reply || reply->format != 32 || reply->value_len == 0) return XCB_NONE;
    return *static_cast<const xcb_window_t*>(xcb_get_property_value(reply.get()));
}

} // namespace tavik
