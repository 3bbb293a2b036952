#include "Text/BreakIterators.h"

#include "Base/Fatal.h"

#include <unicode/locid.h>
#include <unicode/utext.h>

namespace tavik {
namespace {

using Factory = icu::BreakIterator* (*)(const icu::Locale&, UErrorCode&);

std::unique_ptr<icu::BreakIterator> breaksOver(std::u16string_view text, Factory create) {
    UErrorCode status = U_ZERO_ERROR;
    std::unique_ptr<icu::BreakIterator> breaks(create(icu::Locale::getEnglish(), status));
    UText units = UTEXT_INITIALIZER;
    utext_openUChars(&units, text.data(), static_cast<std::int64_t>(text.size()), &status);
    if (U_FAILURE(status) != 0) fatal("ICU's break rules are missing");
    breaks->setText(&units, status);
    utext_close(&units);
    return breaks;
}

} // namespace

std::unique_ptr<icu::BreakIterator> characterBreaks(std::u16string_view text) {
    return breaksOver(text, icu::BreakIterator::createCharacterInstance);
}

std::unique_ptr<icu::BreakIterator> sentenceBreaks(std::u16string_view text) {
    return breaksOver(text, icu::BreakIterator::createSentenceInstance);
}

std::unique_ptr<icu::BreakIterator> lineBreaks(std::u16string_view text) {
    return breaksOver(text, icu::BreakIterator::createLineInstance);
}

} // namespace tavik
