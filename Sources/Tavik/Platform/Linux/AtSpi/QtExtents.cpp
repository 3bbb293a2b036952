#include "Platform/Linux/AtSpi/QtExtents.h"

#include <algorithm>

namespace tavik {
namespace {

/// What stands before the text of a line: two pixels of its own, and a frame of one at least.
constexpr double fieldMargin = 3;

/// Whether what stands at the place of the range's first character is about that character.
bool isFoundThere(AtSpiCalls& calls, const AtSpiReference& object, AtSpiRange range,
                  const ScreenRect& first) {
    const auto offset =
        calls.offsetAt(object, first.x + first.width / 2, first.y + first.height / 2);
    return offset && *offset >= std::max(range.first - 1, 0) && *offset < range.second;
}

} // namespace

std::optional<ScreenRect> qtRangeExtents(AtSpiCalls& calls, const AtSpiReference& object,
                                         AtSpiRange range) {
    const auto first = calls.characterExtents(object, range.first);
    if (!first || !isFoundThere(calls, object, range, *first)) return std::nullopt;
    auto extents = range.second - range.first == 1
                       ? first
                       : calls.rangeExtents(object, {range.first, range.second - 1});
    const auto field = calls.extents(object);
    if (!extents || !field) return extents;
    const bool isSingleLine = field->height < 2 * first->height;
    if (isSingleLine) {
        extents->x += fieldMargin;
        extents->y = field->y + (field->height - first->height) / 2;
    }
    return extents;
}

} // namespace tavik
