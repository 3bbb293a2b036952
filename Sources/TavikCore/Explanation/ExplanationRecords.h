#pragma once

#include "Dictionary/DictionaryRecords.h"

#include <string>
#include <vector>

namespace tavik {

/// What a selection means in its sentence, as a language model tells it.
struct ContextExplanation {
    /// In Chinese, one sentence.
    std::string meaningInContext;
    /// The whole sentence in Chinese, or the selection when that is long itself.
    std::string translation;
    std::vector<ExampleSentence> examples;

    /// Whether it says nothing of the word.
    bool isEmpty() const { return meaningInContext.empty() && translation.empty(); }

    bool operator==(const ContextExplanation&) const = default;
};

} // namespace tavik
