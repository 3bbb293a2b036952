#pragma once

#include "Storage/SQLiteDB.h"
#include "Text/Lemmatizer.h"

namespace tavik {

/// The lemmatizer of the dictionary file: its table `lemmas` holds, for every inflected form it
/// knows, the base form. A file without that table has no answers.
class TableLemmatizer final : public Lemmatizer {
public:
    /// `db` must outlive the lemmatizer.
    explicit TableLemmatizer(SQLiteDB& db) : db(db) {}

    std::optional<std::string> lemma(std::string_view word) const override;

private:
    SQLiteDB& db;
};

} // namespace tavik
