#pragma once

#include "Base/UTF16Range.h"

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

/// The text rules: what may be looked up, the word at a point, the sentence round a selection.
///
/// Pure functions without state, safe from any thread. None fails: a position outside the text
/// gives nothing, ill-formed text reads as U+FFFD. Text is UTF-8 except where positions are
/// exchanged, which count UTF-16 code units; lengths count user-perceived characters.
namespace tavik::TextUtil {

/// The form under which words are compared: white space, punctuation and symbols trimmed from the
/// ends, inner white space collapsed to single spaces, lower-cased. May be empty.
std::string normalizeWord(std::string_view text);

/// The dictionary's ASCII transcription as IPA: stress marks, length mark and schwa.
std::string normalizePhonetic(std::string_view text);

/// Whether `text` is worth a dictionary lookup: after normalisation at most 40 characters and 4
/// words, only letters, spaces, "'" and "-", and at least one ASCII letter.
bool isLookupCandidate(std::string_view text);

/// The candidate that `selection` becomes when its typographic apostrophes (U+2019, U+02BC) are
/// written as "'"; nothing when `selection` is a candidate already or does not become one. Web
/// pages write «don’t», the dictionary has «don't».
std::optional<std::string> straightenedCandidate(std::string_view selection);

/// The English word that covers the code unit at `index`: ASCII letters, apostrophes and hyphens,
/// at least two of them, and not part of a longer token such as «café» or «abc123».
std::optional<UTF16Range> wordRange(std::u16string_view text, std::int64_t index);

/// The sentence of `text` in which `selection` starts, on one line, for display and storage. A
/// sentence of more than `maxLength` characters is cut to about that length around the selected
/// text and framed by "…". Nothing when the selection does not lie in `text`.
std::optional<std::string> sentence(std::u16string_view text, UTF16Range selection,
                                    std::size_t maxLength);

/// A sentence, split around a word in it.
struct Highlight {
    std::string before;
    std::string match;
    std::string after;

    bool operator==(const Highlight&) const = default;
};

/// Splits `sentence` around the first whole-word occurrence of one of `forms`, whatever its case.
/// Longer forms are tried first.
std::optional<Highlight> highlight(std::string_view sentence, std::vector<std::string> forms);

/// Traditional Chinese as Simplified, by ICU's "Hant-Hans"; the text itself should that fail.
std::string toSimplified(std::string_view text);

} // namespace tavik::TextUtil
