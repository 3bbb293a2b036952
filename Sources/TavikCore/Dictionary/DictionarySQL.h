#pragma once

/// Every statement that is run on the dictionary file. Each finds its rows through an index.
namespace tavik::DictionarySQL {

inline constexpr const char* entry =
    "SELECT * FROM dict WHERE word = ? COLLATE NOCASE ORDER BY word = ? DESC LIMIT 1";

inline constexpr const char* lemma = "SELECT lemma FROM lemmas WHERE form = ?";

inline constexpr const char* examples =
    "SELECT e.en, e.zh FROM examples_fts f JOIN examples e ON e.id = f.rowid\n"
    "WHERE examples_fts MATCH ? ORDER BY e.zh = '', abs(length(e.en) - 55) LIMIT ?";

} // namespace tavik::DictionarySQL
