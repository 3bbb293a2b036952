#include "Platform/Linux/X11/PanelSpace.h"

#include <algorithm>
#include <cstddef>
#include <limits>

namespace tavik {
namespace {

/// Along one axis, without its end.
struct Span {
    double begin;
    double end;

    double length() const { return end - begin; }
};

Span across(const ScreenRect& rect) {
    return {rect.x, rect.x + rect.width};
}

Span down(const ScreenRect& rect) {
    return {rect.y, rect.y + rect.height};
}

Span overlap(const Span& one, const Span& other) {
    return {std::max(one.begin, other.begin), std::min(one.end, other.end)};
}

bool meets(const EdgeStrut& strut, const Span& side) {
    return strut.depth > 0 && strut.first <= strut.last && strut.first < side.end
           && strut.last >= side.begin;
}

bool isSensible(double taken, const Span& whole) {
    return taken > 0 && taken <= whole.length() / 2;
}

/// Takes away at both ends what panels along `side` keep free.
Span shortened(const Span& whole, const Span& desktop, const Span& side,
               const std::vector<Strut>& struts, EdgeStrut Strut::*atBegin,
               EdgeStrut Strut::*atEnd) {
    Span left = whole;
    for (const Strut& strut : struts) {
        const double begin = desktop.begin + (strut.*atBegin).depth;
        const double end = desktop.end - (strut.*atEnd).depth;
        if (meets(strut.*atBegin, side) && isSensible(begin - whole.begin, whole))
            left.begin = std::max(left.begin, begin);
        if (meets(strut.*atEnd, side) && isSensible(whole.end - end, whole))
            left.end = std::min(left.end, end);
    }
    return left;
}

ScreenRect rectOf(const Span& across, const Span& down) {
    return {across.begin, down.begin, across.length(), down.length()};
}

} // namespace

std::optional<Strut> strutOf(const std::vector<std::uint32_t>& numbers) {
    if (numbers.size() != 12 && numbers.size() != 4) return std::nullopt;
    if (std::all_of(numbers.begin(), numbers.begin() + 4, [](auto depth) { return depth == 0; }))
        return std::nullopt;
    const auto edge = [&](std::size_t index) {
        if (numbers.size() == 4)
            return EdgeStrut{numbers.at(index), 0, std::numeric_limits<std::uint32_t>::max()};
        return EdgeStrut{numbers.at(index), numbers.at(4 + 2 * index), numbers.at(5 + 2 * index)};
    };
    return Strut{edge(0), edge(1), edge(2), edge(3)};
}

std::vector<ScreenRect> areasOf(const std::vector<std::uint32_t>& numbers) {
    std::vector<ScreenRect> areas;
    // Coordinates are signed, though they are told as if they were not.
    const auto signedAt = [&](std::size_t index) {
        return static_cast<double>(static_cast<std::int32_t>(numbers.at(index)));
    };
    for (std::size_t first = 0; first + 4 <= numbers.size(); first += 4)
        areas.push_back({signedAt(first), signedAt(first + 1),
                         static_cast<double>(numbers.at(first + 2)),
                         static_cast<double>(numbers.at(first + 3))});
    return areas;
}

ScreenRect withoutStruts(const ScreenRect& monitor, const std::vector<Strut>& struts,
                         const ScreenRect& desktop) {
    const Span width = across(monitor);
    const Span height = down(monitor);
    return rectOf(shortened(width, across(desktop), height, struts, &Strut::left, &Strut::right),
                  shortened(height, down(desktop), width, struts, &Strut::top, &Strut::bottom));
}

ScreenRect withinArea(const ScreenRect& monitor, const std::vector<ScreenRect>& areas) {
    for (const ScreenRect& area : areas) {
        const Span width = overlap(across(monitor), across(area));
        const Span height = overlap(down(monitor), down(area));
        // Areas do not overlap, so no other one has more of it.
        if (width.length() >= monitor.width / 2 && height.length() >= monitor.height / 2)
            return rectOf(width, height);
    }
    return monitor;
}

} // namespace tavik
