#include "Text/TextUtil.h"

#include <unicode/translit.h>
#include <unicode/unistr.h>

#include <algorithm>
#include <memory>

namespace tavik::TextUtil {
std::string toSimplified(std::string_view text) {
    // Creating the first transliterator of a process takes ICU 13 ms.
    const bool isASCII =
        std::all_of(text.begin(), text.end(), [](unsigned char unit) { return unit < 0x80; });
    if (isASCII) return std::string(text);
    UErrorCode status = U_ZERO_ERROR;
    const std::unique_ptr<icu::Transliterator> converter(
        icu::Transliterator::createInstance("Hant-Hans", UTRANS_FORWARD, status));
    if (U_FAILURE(status) || !converter) return std::string(text);
    auto converted =
        icu::UnicodeString::fromUTF8({text.data(), static_cast<std::int32_t>(text.size())});
    converter->transliterate(converted);
    std::string result;
    return converted.toUTF8String(result);
}

} // namespace tavik::TextUtil
