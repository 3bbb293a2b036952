// Prints, for a person to judge, every place of a text where a sentence boundary of ICU was taken
// back: what stands before it, "⁀", and what follows. The text comes from standard input; single
// line breaks are read as wrapped lines.

#include "Text/BreakIterators.h"
#include "Text/SentenceTokenizer.h"
#include "Text/Unicode.h"

#include <algorithm>
#include <cstdio>
#include <iostream>
#include <iterator>
#include <set>

namespace {

constexpr std::size_t contextUnits = 50;

std::string onOneLine(std::u16string_view text) {
    std::string line = tavik::utf8FromUTF16(text);
    std::replace(line.begin(), line.end(), '\n', ' ');
    return line;
}

void printMerge(std::u16string_view text, std::size_t at) {
    const std::size_t from = at > contextUnits ? at - contextUnits : 0;
    std::printf("%s⁀%s\n", onOneLine(text.substr(from, at - from)).c_str(),
                onOneLine(text.substr(at, contextUnits)).c_str());
}

} // namespace

int main() {
    const std::string input{std::istreambuf_iterator<char>(std::cin), {}};
    std::u16string text = tavik::utf16FromUTF8(input);
    for (std::size_t i = 1; i + 1 < text.size(); ++i)
        if (text[i] == u'\n' && text[i - 1] != u'\n' && text[i + 1] != u'\n') text[i] = u' ';

    std::set<std::int64_t> kept;
    for (const tavik::UTF16Range range : tavik::sentenceRanges(text))
        kept.insert(range.location);
    const auto breaks = tavik::sentenceBreaks(text);
    std::size_t merges = 0;
    for (auto at = breaks->next(); at != icu::BreakIterator::DONE; at = breaks->next()) {
        if (static_cast<std::size_t>(at) == text.size() || kept.contains(at)) continue;
        printMerge(text, static_cast<std::size_t>(at));
        ++merges;
    }
    std::cerr << kept.size() << " sentences, " << merges << " boundaries taken back\n";
    return 0;
}
