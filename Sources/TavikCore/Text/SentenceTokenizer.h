#pragma once

#include "Base/UTF16Range.h"

#include <string_view>
#include <vector>

namespace tavik {

/// The sentences of `text`, in order and without gaps: each ends where the next begins, so the
/// white space between two belongs to the first. Safe from any thread.
std::vector<UTF16Range> sentenceRanges(std::u16string_view text);

} // namespace tavik
