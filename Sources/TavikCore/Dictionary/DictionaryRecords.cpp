#include "Dictionary/DictionaryRecords.h"

#include <string_view>

namespace tavik {

std::string DictEntry::brief() const {
    if (!translations.empty()) return translations.front();
    if (!definitions.empty()) return definitions.front();
    return {};
}

} // namespace tavik

std::size_t std::hash<tavik::ExampleSentence>::operator()(
    const tavik::ExampleSentence& sentence) const noexcept {
    constexpr std::size_t oddMultiplier = 31;
    const std::hash<std::string_view> ofText;
    return ofText(sentence.en) * oddMultiplier + ofText(sentence.zh);
}
