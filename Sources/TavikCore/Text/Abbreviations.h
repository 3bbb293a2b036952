#pragma once

#include <string_view>

namespace tavik {

/// What a full stop behind an English word says of the sentence.
enum class Abbreviation {
    /// No abbreviation: the sentence may end.
    none,
    /// Something always follows, as after "Mr." or "e.g.".
    continues,
    /// A number follows if it is an abbreviation, as after "No." or "Jan.".
    beforeNumber,
    /// The sentence ends if the next word is one that sentences begin with, as after "U.S.".
    unlessOpener,
};

/// `word` with its full stop, in its own case; letters, dots and hyphens only.
Abbreviation abbreviation(std::u16string_view word);

/// Whether sentences commonly begin with the capitalised `word`: articles, pronouns, conjunctions.
bool isSentenceOpener(std::u16string_view word);

/// Whether `word` reports speech, like "said" or "asked".
bool isSpeechVerb(std::u16string_view word);

} // namespace tavik
