#include "Text/SentenceTokenizer.h"

#include "Text/BreakIterators.h"

namespace tavik {

std::vector<UTF16Range> sentenceRanges(std::u16string_view text) {
    const auto breaks = sentenceBreaks(text);
    std::vector<UTF16Range> ranges;
    std::int64_t start = 0;
    for (auto end = breaks->next(); end != icu::BreakIterator::DONE; end = breaks->next()) {
        ranges.push_back({start, end - start});
        start = end;
    }
    return ranges;
}

} // namespace tavik
