#include "Text/CharacterClasses.h"
#include "Text/TextUtil.h"
#include "Text/Unicode.h"

#include <unicode/regex.h>
#include <unicode/unistr.h>

#include <algorithm>

namespace tavik::TextUtil {
namespace {

/// `form` as a regular expression that matches it as whole words. Every character that a pattern
/// could read as syntax is escaped.
icu::UnicodeString wholeWordPattern(const std::string& form) {
    icu::UnicodeString pattern(u"\\b");
    for (const char16_t unit : utf16FromUTF8(form)) {
        if (unit < 0x80 && !isAlphanumeric(unit)) pattern.append(u'\\');
        pattern.append(unit);
    }
    return pattern.append(u"\\b");
}

} // namespace

std::optional<Highlight> highlight(std::string_view sentence, std::vector<std::string> forms) {
    std::stable_sort(forms.begin(), forms.end(), [](const auto& a, const auto& b) {
        return characterCount(a) > characterCount(b);
    });
    const std::u16string units = utf16FromUTF8(sentence);
    const icu::UnicodeString text(false, units.data(), static_cast<std::int32_t>(units.size()));
    for (const std::string& form : forms) {
        if (form.empty()) continue;
        UErrorCode status = U_ZERO_ERROR;
        icu::RegexMatcher matcher(wholeWordPattern(form), text, UREGEX_CASE_INSENSITIVE, status);
        if (U_FAILURE(status) || !matcher.find(status) || U_FAILURE(status)) continue;
        const auto start = static_cast<std::size_t>(matcher.start(status));
        const auto end = static_cast<std::size_t>(matcher.end(status));
        const std::u16string_view whole(units);
        return Highlight{utf8FromUTF16(whole.substr(0, start)),
                         utf8FromUTF16(whole.substr(start, end - start)),
                         utf8FromUTF16(whole.substr(end))};
    }
    return std::nullopt;
}

} // namespace tavik::TextUtil
