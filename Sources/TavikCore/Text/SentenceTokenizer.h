#pragma once

#include "Base/UTF16Range.h"

#include <string_view>
#include <vector>

namespace tavik {

/// The sentences of `text`, in order and without gaps: each ends where the next begins, so the
/// white space between two belongs to the first. Safe from any thread.
///
/// ICU's sentence boundaries, of which those are taken back that no reader would see:
/// 1. behind an abbreviation, compared as a whole word, or an initial;
/// 2. behind a list number, such as "1." or "b)";
/// 3. behind quoted speech that goes on: "Stop!" he shouted;
/// 4. inside brackets that were opened in mid-sentence;
/// 5. before a piece without letters and digits: closing marks, dots, emoji;
/// 6. where no blank stands between, as in an address with a "?".
/// None is taken back at a line break, which ends a paragraph.
std::vector<UTF16Range> sentenceRanges(std::u16string_view text);

} // namespace tavik
