#pragma once

#include <cstdint>
#include <limits>

namespace tavik {

/// A range of UTF-16 code units, the way accessibility interfaces report selections.
struct UTF16Range {
    /// The location of a range that is absent.
    static constexpr std::int64_t notFound = std::numeric_limits<std::int64_t>::max();

    std::int64_t location = notFound;
    std::int64_t length = 0;

    bool operator==(const UTF16Range&) const = default;
};

} // namespace tavik
