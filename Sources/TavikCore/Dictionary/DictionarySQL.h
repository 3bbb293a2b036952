#pragma once

/// Every statement that is run on the dictionary file. Each finds its rows through an index.
namespace tavik::DictionarySQL {

inline constexpr const char* entry =
    "SELECT * FROM dict WHERE word = ? COLLATE NOCASE ORDER BY word = ? DESC LIMIT 1";

/// The word twice and a limit; the spelling that is exactly the word comes first.
inline constexpr const char* spellings =
    "SELECT word, translation FROM dict WHERE word = ? COLLATE NOCASE\n"
    "ORDER BY word = ? DESC, word LIMIT ?";

/// Bounds, the first inside and the second outside, and a limit. The outcome is the beginning of
/// that of `commonWords`, for a fraction of its time where the bounds are wide.
inline constexpr const char* mostCommonWords =
    "SELECT d.word, d.translation\n"
    "FROM (SELECT word, rank FROM ranks WHERE word >= ? AND word < ? AND rank <= 5000\n"
    "      ORDER BY rank, word LIMIT ?) found\n"
    "JOIN dict d ON d.word = found.word COLLATE NOCASE AND d.word = found.word\n"
    "ORDER BY found.rank, found.word";

/// Bounds and a limit, as above.
inline constexpr const char* commonWords =
    "SELECT d.word, d.translation\n"
    "FROM (SELECT word, rank FROM ranks WHERE word >= ? AND word < ?\n"
    "      ORDER BY rank, word LIMIT ?) found\n"
    "JOIN dict d ON d.word = found.word COLLATE NOCASE AND d.word = found.word\n"
    "ORDER BY found.rank, found.word";

/// Bounds as above, how many headwords are looked at, and a limit. Abbreviations, terms of a trade
/// such as «[计]», names of persons and what has no translation come last.
inline constexpr const char* otherWords =
    "SELECT word, translation\n"
    "FROM (SELECT word, translation, ltrim(ifnull(translation, '')) AS gloss FROM dict\n"
    "      WHERE word >= ? COLLATE NOCASE AND word < ? COLLATE NOCASE\n"
    "      ORDER BY word COLLATE NOCASE LIMIT ?) found\n"
    "ORDER BY substr(gloss, 1, 1) IN ('', '[') OR substr(gloss, 1, 5) = 'abbr.'\n"
    "         OR instr(gloss, '人名') > 0,\n"
    "         length(word), word LIMIT ?";

inline constexpr const char* lemma = "SELECT lemma FROM lemmas WHERE form = ?";

inline constexpr const char* examples =
    "SELECT e.en, e.zh FROM examples_fts f JOIN examples e ON e.id = f.rowid\n"
    "WHERE examples_fts MATCH ? ORDER BY e.zh = '', abs(length(e.en) - 55) LIMIT ?";

} // namespace tavik::DictionarySQL
