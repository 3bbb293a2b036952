#pragma once

#include "Dictionary/OfflineDictionary.h"

#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace tavik {

/// What the dictionary knows of a selection.
struct WordLookup {
    /// The selected text without white space at its ends.
    std::string selection;
    /// The form under which the word is filed.
    std::string lemma;
    std::optional<DictEntry> entry;
    std::vector<ExampleSentence> examples;
    /// Whether the dictionary has an entry.
    bool isWord = false;

    /// The title of the word: the entry's spelling, else the lemma.
    std::string headword() const;

    bool operator==(const WordLookup&) const = default;
};

/// Looks a selection up; never fails. Without a dictionary, and for a selection that is no lookup
/// candidate, there is no entry and the lemma is the selection's normal form. A word written with
/// a typographic apostrophe is found under the straight one.
WordLookup lookUpWord(const OfflineDictionary* dictionary, std::string_view selection);

} // namespace tavik
