#include "Platform/Linux/X11/WindowReader.h"

#include "Platform/Linux/X11/WindowClients.h"

#include <sys/types.h>

#include <algorithm>
#include <limits>

namespace tavik {
namespace {

/// Of a text that a window carries, in words of four bytes.
constexpr std::uint32_t longestText = 1024;
/// Of a window manager's windows.
constexpr std::uint32_t longestList = 4096;
/// Coordinates of X have 16 bits.
constexpr std::uint32_t widestFrame = std::numeric_limits<std::int16_t>::max();

} // namespace

WindowReader::WindowReader(const OpenDisplay& display)
    : display(display), atoms(atomsOf(display.connection, atomNames, false)) {}

xcb_window_t WindowReader::active() const {
    const auto told = firstNumber(display.root, activeWindow, XCB_ATOM_WINDOW);
    return told && *told != XCB_NONE ? *told : focusedClient();
}

xcb_window_t WindowReader::focusedClient() const {
    const auto known = numbersOf(display.root, clients, XCB_ATOM_WINDOW, longestList);
    const auto request = xcb_get_input_focus(display.connection);
    const XCBReply<xcb_get_input_focus_reply_t> focus(
        xcb_get_input_focus_reply(display.connection, request, nullptr));
    xcb_window_t window = focus ? focus->focus : XCB_NONE;
    // The keyboard may be with a part of a window.
    constexpr int deepest = 16;
    for (int depth = 0; depth < deepest && window > XCB_INPUT_FOCUS_POINTER_ROOT; ++depth) {
        if (std::ranges::find(known, window) != known.end()) return window;
        const auto question = xcb_query_tree(display.connection, window);
        const XCBReply<xcb_query_tree_reply_t> tree(
            xcb_query_tree_reply(display.connection, question, nullptr));
        window = tree ? tree->parent : XCB_NONE;
    }
    return XCB_NONE;
}

std::vector<xcb_window_t> WindowReader::uppermost(std::size_t limit) const {
    auto windows = numbersOf(display.root, stackedClients, XCB_ATOM_WINDOW, longestList);
    if (windows.empty()) windows = numbersOf(display.root, clients, XCB_ATOM_WINDOW, longestList);
    std::ranges::reverse(windows);
    if (windows.size() > limit) windows.resize(limit);
    return windows;
}

bool WindowReader::isNormal(xcb_window_t window) const {
    const auto type = firstNumber(window, windowType, XCB_ATOM_ATOM);
    return !type || *type == atoms.at(normalType) || *type == atoms.at(dialogType)
           || *type == atoms.at(utilityType);
}

std::int64_t WindowReader::processOf(xcb_window_t window) const {
    const auto told = firstNumber(window, process, XCB_ATOM_CARDINAL);
    const std::int64_t found = told ? *told : localProcessOf(display.connection, window);
    return found > std::uint32_t{std::numeric_limits<pid_t>::max()} ? 0 : found;
}

QString WindowReader::titleOf(xcb_window_t window) const {
    QString text = textOf(window, atoms.at(title));
    return text.isEmpty() ? textOf(window, XCB_ATOM_WM_NAME) : text;
}

QString WindowReader::applicationOf(xcb_window_t window) const {
    return textOf(window, atoms.at(applicationID));
}

/// The second of two texts; the first is the instance.
QString WindowReader::classOf(xcb_window_t window) const {
    return partsOf(window, XCB_ATOM_WM_CLASS).section(QChar::Null, 1, 1);
}

std::optional<ScreenRect> WindowReader::contentsOf(xcb_window_t window) const {
    xcb_connection_t* on = display.connection;
    const auto sizeRequest = xcb_get_geometry(on, window);
    const auto placeRequest = xcb_translate_coordinates(on, window, display.root, 0, 0);
    const XCBReply<xcb_get_geometry_reply_t> size(xcb_get_geometry_reply(on, sizeRequest, nullptr));
    const XCBReply<xcb_translate_coordinates_reply_t> place(
        xcb_translate_coordinates_reply(on, placeRequest, nullptr));
    if (!size || !place) return std::nullopt;
    return ScreenRect{static_cast<double>(place->dst_x), static_cast<double>(place->dst_y),
                      static_cast<double>(size->width), static_cast<double>(size->height)};
}

ScreenRect WindowReader::frameOf(xcb_window_t window, const ScreenRect& contents) const {
    const auto extents = numbersOf(window, frameExtents, XCB_ATOM_CARDINAL, 4);
    const auto isWide = [](std::uint32_t extent) { return extent > widestFrame; };
    if (extents.size() != 4 || std::ranges::any_of(extents, isWide)) return contents;
    const double left = extents[0];
    const double right = extents[1];
    const double top = extents[2];
    const double bottom = extents[3];
    return {contents.x - left, contents.y - top, contents.width + left + right,
            contents.height + top + bottom};
}

WindowReader::Property WindowReader::read(xcb_window_t window, xcb_atom_t name,
                                          std::uint32_t words) const {
    if (name == XCB_NONE) return nullptr;
    const auto request =
        xcb_get_property(display.connection, 0, window, name, XCB_GET_PROPERTY_TYPE_ANY, 0, words);
    return Property(xcb_get_property_reply(display.connection, request, nullptr));
}

std::vector<std::uint32_t> WindowReader::numbersOf(xcb_window_t window, AtomIndex name,
                                                   xcb_atom_t type, std::uint32_t count) const {
    const Property property = read(window, atoms.at(name), count);
    if (!property || property->type != type || property->format != 32) return {};
    const auto* first = static_cast<const std::uint32_t*>(xcb_get_property_value(property.get()));
    return {first, first + property->value_len};
}

std::optional<std::uint32_t> WindowReader::firstNumber(xcb_window_t window, AtomIndex name,
                                                       xcb_atom_t type) const {
    const auto numbers = numbersOf(window, name, type, 1);
    return numbers.empty() ? std::nullopt : std::optional(numbers.front());
}

QString WindowReader::textOf(xcb_window_t window, xcb_atom_t name) const {
    return partsOf(window, name).section(QChar::Null, 0, 0);
}

/// One text or several, parted by NUL.
QString WindowReader::partsOf(xcb_window_t window, xcb_atom_t name) const {
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

} // namespace tavik
