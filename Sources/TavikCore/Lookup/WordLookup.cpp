#include "Lookup/WordLookup.h"

#include "Text/CharacterClasses.h"
#include "Text/TextUtil.h"
#include "Text/Unicode.h"

namespace tavik {
namespace {

constexpr int exampleLimit = 3;

/// The text to look up in place of the selection as captured, or nothing when it cannot be.
std::optional<std::string> lookupText(const OfflineDictionary& dictionary,
                                      const std::string& selection) {
    if (TextUtil::isLookupCandidate(selection)) return selection;
    auto straightened = TextUtil::straightenedCandidate(selection);
    if (straightened && dictionary.entry(TextUtil::normalizeWord(*straightened)))
        return straightened;
    return std::nullopt;
}

} // namespace

std::string WordLookup::headword() const {
    return entry ? entry->word : lemma;
}

WordLookup lookUpWord(const OfflineDictionary* dictionary, std::string_view selection) {
    WordLookup result;
    result.selection = trimmed(selection, isWhiteSpace);
    result.lemma = TextUtil::normalizeWord(result.selection);
    if (dictionary == nullptr) return result;
    const auto text = lookupText(*dictionary, result.selection);
    if (!text) return result;

    const std::string normal = TextUtil::normalizeWord(*text);
    result.lemma = dictionary->lemma(normal);
    result.entry = dictionary->entry(result.lemma);
    if (!result.entry) result.entry = dictionary->entry(normal);
    result.examples = dictionary->examples(result.lemma, exampleLimit);
    result.isWord = result.entry.has_value();
    return result;
}

} // namespace tavik
