#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace tavik {

/// What someone has typed of a word, as the dictionary's index is asked for it.
struct TypedPrefix {
    /// Without white space at the ends, inner white space as single blanks, apostrophes straight.
    std::string word;
    /// Every headword at or after `lower` and before `upper` begins with what was typed. Both are
    /// in lower case and are compared without regard to ASCII case.
    std::string lower;
    std::string upper;
};

/// White space at the end of `text` counts as one blank at the end of the range, so that only
/// phrases lie in it. Nothing for text without a Latin letter.
std::optional<TypedPrefix> typedPrefix(std::string_view text);

} // namespace tavik
