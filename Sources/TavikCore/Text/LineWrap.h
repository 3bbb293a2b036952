#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

namespace tavik {

/// `text` in lines of at most `columns` terminal columns, broken where Unicode's line-breaking
/// rules allow it. A piece that cannot be broken and is wider stays whole on its own line.
std::vector<std::string> wrappedLines(std::string_view text, std::size_t columns);

} // namespace tavik
