#pragma once

#include "Base/Date.h"
#include "Dictionary/OfflineDictionary.h"
#include "Explanation/LLMClient.h"
#include "Vocabulary/VocabularyStore.h"

#include <optional>
#include <stop_token>
#include <string>
#include <string_view>
#include <vector>

namespace tavik {

/// Everything known of a selection without asking anybody.
struct LookupResult {
    /// The selected text without white space at its ends.
    std::string selection;
    /// The sentence around it, as captured.
    std::optional<std::string> sentence;
    SourceInfo source;
    /// The form under which the word is filed.
    std::string lemma;
    std::optional<DictEntry> entry;
    /// At most three.
    std::vector<ExampleSentence> examples;
    /// Whether the dictionary has an entry.
    bool isWord = false;
    /// Whether the book has the lemma.
    bool alreadySaved = false;

    /// The title of the word: the entry's spelling, else the lemma.
    std::string headword() const;

    /// As which the word may stand in a sentence.
    std::vector<std::string> forms() const;

    bool operator==(const LookupResult&) const = default;
};

/// Turns a selection into what the user sees of it, and saves it. Here the dictionary, the book and
/// the language model meet.
///
/// Every call is independent; any thread may call. The dictionary and the book must outlive it.
class LookupService {
public:
    /// Without a dictionary nothing is a word, but everything can be saved and explained.
    LookupService(const OfflineDictionary* dictionary, VocabularyStore& store);

    /// What the dictionary and the book know of `selection`. Never fails.
    LookupResult lookup(std::string_view selection, std::optional<std::string> sentence,
                        SourceInfo source) const;

    /// The key under which an explanation is kept: 64 hexadecimal digits. The case of the selection
    /// does not matter, that of the sentence does.
    static std::string cacheKey(std::string_view selection,
                                const std::optional<std::string>& sentence);

    /// What the selection means in its sentence: as it was told once, else as `client`'s model
    /// tells it, which is then kept for ever unless it is empty. Throws what `LLMClient::explain`
    /// throws.
    ContextExplanation explain(const LookupResult& result, const LLMClient& client,
                               const std::stop_token& stop = {}) const;

    /// Saves the word with its sentence in one transaction. Throws `SQLiteDB::Error`.
    VocabularyStore::AddResult save(const LookupResult& result,
                                    const std::optional<std::string>& contextMeaning,
                                    Date now) const;

private:
    const OfflineDictionary* dictionary;
    VocabularyStore& store;
};

} // namespace tavik
