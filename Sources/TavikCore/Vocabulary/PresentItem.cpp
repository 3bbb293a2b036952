#include "Vocabulary/PresentItem.h"

#include "Vocabulary/VocabularyStore.h"

namespace tavik {

std::optional<VocabItem> presentItem(const VocabularyStore& book, const Word& word) {
    auto present = book.item(word.id);
    if (!present || present->word.lemma != word.lemma || present->word.createdAt != word.createdAt)
        return std::nullopt;
    return present;
}

} // namespace tavik
