#pragma once

#include <unicode/brkiter.h>

#include <memory>
#include <string_view>

namespace tavik {

/// ICU break iterators over `text`, which must outlive them. One is made for every call, for an
/// iterator must not be shared between threads. Lone surrogates are allowed.
std::unique_ptr<icu::BreakIterator> characterBreaks(std::u16string_view text);
std::unique_ptr<icu::BreakIterator> sentenceBreaks(std::u16string_view text);
std::unique_ptr<icu::BreakIterator> lineBreaks(std::u16string_view text);

} // namespace tavik
