#include "Platform/Linux/X11/X11Workspace.h"

#include "Platform/Linux/X11/DisplayThread.h"

#include <xcb/randr.h>

#include <QString>
#include <algorithm>
#include <array>
#include <limits>
#include <string_view>
#include <utility>

namespace tavik {
namespace {

constexpr std::chrono::milliseconds longestWait{1000};
/// Of a text that a window carries, in words of four bytes.
constexpr std::uint32_t longestText = 1024;
/// Coordinates of X have 16 bits.
constexpr std::uint32_t widestFrame = std::numeric_limits<std::int16_t>::max();

enum AtomIndex : std::size_t {
    activeWindow,
    process,
    title,
    applicationID,
    frameExtents,
    utf8Text,
    compoundText,
    atomCount
};

constexpr std::array<std::string_view, atomCount> atomNames{
    "_NET_ACTIVE_WINDOW", "_NET_WM_PID", "_NET_WM_NAME", "_GTK_APPLICATION_ID",
    "_NET_FRAME_EXTENTS", "UTF8_STRING", "COMPOUND_TEXT"};

using Atoms = std::array<xcb_atom_t, atomCount>;

/// XCB_NONE stands for a name that nobody has used yet.
Atoms atomsOf(xcb_connection_t* connection) {
    std::array<xcb_intern_atom_cookie_t, atomCount> requests{};
    std::transform(atomNames.begin(), atomNames.end(), requests.begin(),
                   [&](std::string_view name) {
                       const auto length = static_cast<std::uint16_t>(name.size());
                       return xcb_intern_atom(connection, 1, length, name.data());
                   });
    Atoms atoms{};
    std::transform(requests.begin(), requests.end(), atoms.begin(), [&](const auto& request) {
        const XCBReply<xcb_intern_atom_reply_t> reply(
            xcb_intern_atom_reply(connection, request, nullptr));
        return reply ? reply->atom : xcb_atom_t{XCB_NONE};
    });
    return atoms;
}

/// Reads windows, any of which may be gone by now. A property of another type than it should have
/// counts as absent.
class WindowReader {
public:
    explicit WindowReader(const OpenDisplay& display)
        : display(display), atoms(atomsOf(display.connection)) {}

    xcb_window_t active() const {
        return firstNumber(display.root, activeWindow, XCB_ATOM_WINDOW).value_or(XCB_NONE);
    }

    std::int64_t processOf(xcb_window_t window) const {
        return firstNumber(window, process, XCB_ATOM_CARDINAL).value_or(0);
    }

    QString titleOf(xcb_window_t window) const {
        QString text = textOf(window, atoms.at(title));
        return text.isEmpty() ? textOf(window, XCB_ATOM_WM_NAME) : text;
    }

    QString applicationOf(xcb_window_t window) const {
        return textOf(window, atoms.at(applicationID));
    }

    /// The second of two texts; the first is the instance.
    QString classOf(xcb_window_t window) const {
        return partsOf(window, XCB_ATOM_WM_CLASS).section(QChar::Null, 1, 1);
    }

    std::optional<ScreenRect> contentsOf(xcb_window_t window) const {
        xcb_connection_t* on = display.connection;
        const auto sizeRequest = xcb_get_geometry(on, window);
        const auto placeRequest = xcb_translate_coordinates(on, window, display.root, 0, 0);
        const XCBReply<xcb_get_geometry_reply_t> size(
            xcb_get_geometry_reply(on, sizeRequest, nullptr));
        const XCBReply<xcb_translate_coordinates_reply_t> place(
            xcb_translate_coordinates_reply(on, placeRequest, nullptr));
        if (!size || !place) return std::nullopt;
        return ScreenRect{static_cast<double>(place->dst_x), static_cast<double>(place->dst_y),
                          static_cast<double>(size->width), static_cast<double>(size->height)};
    }

    /// `contents` with the frame around it.
    ScreenRect frameOf(xcb_window_t window, const ScreenRect& contents) const {
        const auto extents = numbersOf(window, frameExtents, XCB_ATOM_CARDINAL, 4);
        const auto isWide = [](std::uint32_t extent) { return extent > widestFrame; };
        if (extents.size() != 4 || std::any_of(extents.begin(), extents.end(), isWide))
            return contents;
        const double left = extents[0];
        const double right = extents[1];
        const double top = extents[2];
        const double bottom = extents[3];
        return {contents.x - left, contents.y - top, contents.width + left + right,
                contents.height + top + bottom};
    }

private:
    using Property = XCBReply<xcb_get_property_reply_t>;

    Property read(xcb_window_t window, xcb_atom_t name, std::uint32_t words) const {
        if (name == XCB_NONE) return nullptr;
        const auto request = xcb_get_property(display.connection, 0, window, name,
                                              XCB_GET_PROPERTY_TYPE_ANY, 0, words);
        return Property(xcb_get_property_reply(display.connection, request, nullptr));
    }

    std::vector<std::uint32_t> numbersOf(xcb_window_t window, AtomIndex name, xcb_atom_t type,
                                         std::uint32_t count) const {
        const Property property = read(window, atoms.at(name), count);
        if (!property || property->type != type || property->format != 32) return {};
        const auto* first =
            static_cast<const std::uint32_t*>(xcb_get_property_value(property.get()));
        return {first, first + property->value_len};
    }

    std::optional<std::uint32_t> firstNumber(xcb_window_t window, AtomIndex name,
                                             xcb_atom_t type) const {
        const auto numbers = numbersOf(window, name, type, 1);
        return numbers.empty() ? std::nullopt : std::optional(numbers.front());
    }

    QString textOf(xcb_window_t window, xcb_atom_t name) const {
        return partsOf(window, name).section(QChar::Null, 0, 0);
    }

    /// One text or several, parted by NUL.
    QString partsOf(xcb_window_t window, xcb_atom_t name) const {
        const Property property = read(window, name, longestText);
        if (!property || property->format != 8) return {};
        const QByteArray bytes(static_cast<const char*>(xcb_get_property_value(property.get())),
                               static_cast<qsizetype>(property->value_len));
        if (property->type == atoms.at(utf8Text)) return QString::fromUtf8(bytes);
        // Compound text is Latin-1 until it escapes to other encodings.
        if (property->type == XCB_ATOM_STRING
            || (property->type == atoms.at(compoundText) && !bytes.contains('\x1b')))
            return QString::fromLatin1(bytes);
        return {};
    }

    const OpenDisplay& display;
    Atoms atoms;
};

struct ActiveWindow {
    FrontApplication application;
    std::string windowClass;
};

std::optional<std::string> nonEmpty(const QString& text) {
    return text.isEmpty() ? std::nullopt : std::optional(text.toStdString());
}

std::optional<ActiveWindow> findActiveWindow(const OpenDisplay& display) {
    const WindowReader reader(display);
    const xcb_window_t window = reader.active();
    if (window == XCB_NONE) return std::nullopt;
    std::int64_t processIdentifier = reader.processOf(window);
    if (processIdentifier > std::numeric_limits<pid_t>::max()) processIdentifier = 0;
    const QString windowClass = reader.classOf(window);
    const auto applicationID = nonEmpty(reader.applicationOf(window));
    const QString title = reader.titleOf(window);
    const auto contents = reader.contentsOf(window);
    if (!contents) return std::nullopt;
    return ActiveWindow{
        {.localizedName = std::nullopt,
         .bundleIdentifier = applicationID ? applicationID : nonEmpty(windowClass.toLower()),
         .processIdentifier = processIdentifier,
         .windowTitle = title.toStdString(),
         .contents = *contents,
         .frame = reader.frameOf(window, *contents)},
        windowClass.toStdString()};
}

bool hasRandR(xcb_connection_t* connection) {
    const auto* extension = xcb_get_extension_data(connection, &xcb_randr_id);
    return extension != nullptr && extension->present != 0;
}

/// Of servers that do not know of monitors, none.
std::vector<ScreenRect> monitorsOf(const OpenDisplay& display) {
    if (!hasRandR(display.connection)) return {};
    const auto request = xcb_randr_get_monitors(display.connection, display.root, 1);
    const XCBReply<xcb_randr_get_monitors_reply_t> reply(
        xcb_randr_get_monitors_reply(display.connection, request, nullptr));
    if (!reply) return {};
    std::vector<ScreenRect> found;
    auto monitors = xcb_randr_get_monitors_monitors_iterator(reply.get());
    for (; monitors.rem > 0; xcb_randr_monitor_info_next(&monitors)) {
        const xcb_randr_monitor_info_t& monitor = *monitors.data;
        const ScreenRect place{static_cast<double>(monitor.x), static_cast<double>(monitor.y),
                               static_cast<double>(monitor.width),
                               static_cast<double>(monitor.height)};
        if (monitor.width == 0 || monitor.height == 0) continue;
        found.insert(monitor.primary != 0 ? found.begin() : found.end(), place);
    }
    return found;
}

std::vector<ScreenRect> findScreens(const OpenDisplay& display) {
    auto screens = monitorsOf(display);
    if (!screens.empty()) return screens;
    const auto request = xcb_get_geometry(display.connection, display.root);
    const XCBReply<xcb_get_geometry_reply_t> whole(
        xcb_get_geometry_reply(display.connection, request, nullptr));
    if (whole)
        screens.push_back(
            {0, 0, static_cast<double>(whole->width), static_cast<double>(whole->height)});
    return screens;
}

} // namespace

X11Workspace::X11Workspace(NameOf nameOf)
    : nameOf(std::move(nameOf)), display(std::make_unique<DisplayThread>()) {}

X11Workspace::~X11Workspace() = default;

std::optional<FrontApplication> X11Workspace::frontApplication() {
    auto window = display->ask<std::optional<ActiveWindow>>(findActiveWindow, longestWait)
                      .value_or(std::nullopt);
    if (!window) return std::nullopt;
    FrontApplication application = std::move(window->application);
    application.localizedName =
        nameOf(application.bundleIdentifier.value_or(""), window->windowClass);
    if (!application.localizedName && !window->windowClass.empty())
        application.localizedName = window->windowClass;
    return application;
}

std::vector<ScreenRect> X11Workspace::screens() {
    return display->ask<std::vector<ScreenRect>>(findScreens, longestWait)
        .value_or(std::vector<ScreenRect>());
}

} // namespace tavik
