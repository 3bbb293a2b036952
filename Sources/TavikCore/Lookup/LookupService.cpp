#include "Lookup/LookupService.h"

#include "Base/Fatal.h"
#include "Dictionary/DictionaryLabels.h"
#include "Explanation/LLMError.h"
#include "Text/CharacterClasses.h"
#include "Text/TextUtil.h"
#include "Text/Unicode.h"

#include <openssl/evp.h>

#include <array>
#include <utility>

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

/// Fills in what the dictionary knows.
void consult(const OfflineDictionary& dictionary, LookupResult& result) {
    const auto text = lookupText(dictionary, result.selection);
    if (!text) return;
    const std::string normal = TextUtil::normalizeWord(*text);
    result.lemma = dictionary.lemma(normal);
    result.entry = dictionary.entry(result.lemma);
    if (!result.entry) result.entry = dictionary.entry(normal);
    result.examples = dictionary.examples(result.lemma, exampleLimit);
    result.isWord = result.entry.has_value();
}

std::string sha256(std::string_view data) {
    constexpr std::string_view digits = "0123456789abcdef";
    std::array<unsigned char, EVP_MAX_MD_SIZE> digest{};
    unsigned int size = 0;
    if (EVP_Digest(data.data(), data.size(), digest.data(), &size, EVP_sha256(), nullptr) != 1)
        fatal("there is no SHA-256");
    std::string text;
    for (std::size_t i = 0; i < size; ++i) {
        text += digits[digest.at(i) >> 4U];
        text += digits[digest.at(i) & 0xFU];
    }
    return text;
}

} // namespace

std::string LookupResult::headword() const {
    return entry ? entry->word : lemma;
}

std::vector<std::string> LookupResult::forms() const {
    std::vector<std::string> forms{selection, TextUtil::normalizeWord(selection)};
    if (!entry) return forms;
    forms.push_back(entry->word);
    for (const Inflection& inflection : inflections(*entry))
        forms.push_back(inflection.form);
    return forms;
}

LookupService::LookupService(const OfflineDictionary* dictionary, VocabularyStore& store)
    : dictionary(dictionary), store(store) {}

LookupResult LookupService::lookup(std::string_view selection, std::optional<std::string> sentence,
                                   SourceInfo source) const {
    LookupResult result;
    result.selection = trimmed(selection, isWhiteSpace);
    result.sentence = std::move(sentence);
    result.source = std::move(source);
    result.lemma = TextUtil::normalizeWord(result.selection);
    if (dictionary != nullptr) consult(*dictionary, result);
    result.alreadySaved = store.wordIDForLemma(result.lemma).has_value();
    return result;
}

std::string LookupService::cacheKey(std::string_view selection,
                                    const std::optional<std::string>& sentence) {
    constexpr char unitSeparator = '\x1F';
    return sha256(lowercased(selection) + unitSeparator + sentence.value_or(""));
}

ContextExplanation LookupService::explain(const LookupResult& result, const LLMClient& client,
                                          const std::stop_token& stop) const {
    const std::string key = cacheKey(result.selection, result.sentence);
    if (auto known = store.cachedExplanation(key)) return std::move(*known);
    if (!client.config().isUsable()) throw LLMError::notConfigured();
    auto explanation = client.explain(result.selection, result.sentence, stop);
    if (!explanation.isEmpty()) store.cacheExplanation(explanation, key, currentDate());
    return explanation;
}

VocabularyStore::AddResult LookupService::save(const LookupResult& result,
                                               const std::optional<std::string>& contextMeaning,
                                               Date now) const {
    return store.add(result.lemma, result.headword(), result.entry, result.selection,
                     result.sentence, contextMeaning, result.source, now);
}

} // namespace tavik
