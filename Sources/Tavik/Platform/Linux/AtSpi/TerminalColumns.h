#pragma once

#include "Base/UTF16Range.h"
#include "Platform/Linux/AtSpi/AtSpiCalls.h"

#include <cstdint>
#include <optional>
#include <string_view>

namespace tavik {

/// Whether `text` has characters that take two columns of a terminal, or none.
bool hasUnevenCharacters(std::u16string_view text);

/// A selection in the text of a terminal whose application counts a row by its columns: each end is
/// the position at which its row begins, in code points, and the column in that row. `columns` is
/// the width of the terminal, 0 if that is unknown. Where the numbers fit several rows, the reading
/// whose ends are those of words is taken. Nothing when they fit none.
std::optional<UTF16Range> rangeOfColumns(std::u16string_view text, AtSpiRange ends,
                                         std::int64_t columns);

} // namespace tavik
