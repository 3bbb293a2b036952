#pragma once

#include "Lookup/WordLookup.h"
#include "TavikTerminal/Terminal.h"
#include "Text/TextUtil.h"

#include <optional>
#include <string>
#include <string_view>

namespace tavik {

/// The sentence in which a word was met, split around the word if it stands in it.
struct SentenceContext {
    std::string sentence;
    std::optional<TextUtil::Highlight> highlight;
};

/// Cuts the sentence with the looked-up word, or one of its forms, out of `text`; all of `text`
/// when the word is not in it; nothing when `text` is blank.
std::optional<SentenceContext> sentenceContext(const WordLookup& lookup, std::string_view text);

/// The result as one line of JSON; the keys are the names of the fields.
std::string lookupJSON(const WordLookup& lookup, const std::optional<SentenceContext>& context);

/// The result for a person, in lines that fit the terminal.
std::string lookupText(const WordLookup& lookup, const std::optional<SentenceContext>& context,
                       const Terminal& terminal);

} // namespace tavik
