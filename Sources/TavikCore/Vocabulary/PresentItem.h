#pragma once

#include "Vocabulary/VocabularyRecords.h"

#include <optional>

namespace tavik {

class VocabularyStore;

/// A word that was read some time ago as the book has it at this moment. Nothing when it was
/// deleted meanwhile, or when the book was restored and its id is another word's. Throws
/// `SQLiteDB::Error`.
std::optional<VocabItem> presentItem(const VocabularyStore& book, const Word& word);

} // namespace tavik
