#pragma once

#include "Storage/SQLiteDB.h"
#include "Vocabulary/VocabularyRecords.h"

/// Reads the store's rows. No row makes a read fail: a value that is missing, of another type or
/// beyond all sense takes its default, which for a moment is `now`, for a card's state new, else 0
/// or empty.
namespace tavik::VocabularyRows {

Card card(const SQLiteDB::Row& row, Date now);

Encounter encounter(const SQLiteDB::Row& row, std::int64_t wordID, Date now);

/// Without `latest`.
VocabItem item(const SQLiteDB::Row& row, Date now);

} // namespace tavik::VocabularyRows
