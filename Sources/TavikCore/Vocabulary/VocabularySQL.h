#pragma once

/// The statements of the vocabulary store.
namespace tavik::VocabularySQL {

inline constexpr const char* version = "PRAGMA user_version";

inline constexpr const char* wordIDForLemma = "SELECT id FROM word WHERE lemma = ?";

inline constexpr const char* insertWord =
    "INSERT INTO word (lemma, headword, phonetic, brief, created_at) VALUES (?,?,?,?,?)";

inline constexpr const char* deleteWord = "DELETE FROM word WHERE id = ?";

inline constexpr const char* card = "SELECT * FROM card WHERE word_id = ?";

inline constexpr const char* upsertCard =
    "INSERT INTO card (word_id, state, due, stability, difficulty, reps, lapses, last_review)\n"
    "VALUES (?,?,?,?,?,?,?,?)\n"
    "ON CONFLICT(word_id) DO UPDATE SET state=excluded.state, due=excluded.due, "
    "stability=excluded.stability,\n"
    "  difficulty=excluded.difficulty, reps=excluded.reps, lapses=excluded.lapses, "
    "last_review=excluded.last_review";

inline constexpr const char* insertReviewLog =
    "INSERT INTO review_log (word_id, rating, state_before, reviewed_at, elapsed_days, "
    "scheduled_days)\n"
    "VALUES (?,?,?,?,?,?)";

/// A missing sentence and an empty one are the same.
inline constexpr const char* sameEncounter =
    "SELECT id FROM encounter WHERE word_id = ? AND IFNULL(sentence,'') = ?";

inline constexpr const char* insertEncounter =
    "INSERT INTO encounter (word_id, selection, sentence, context_meaning, source_app, "
    "source_bundle_id, url, seen_at)\n"
    "VALUES (?,?,?,?,?,?,?,?)";

inline constexpr const char* encounters =
    "SELECT * FROM encounter WHERE word_id = ? ORDER BY seen_at DESC";

/// The head of every list of items; one of the clauses below follows.
inline constexpr const char* items =
    "SELECT w.id AS w_id, w.lemma, w.headword, w.phonetic, w.brief, w.created_at,\n"
    "       c.*, (SELECT count(*) FROM encounter e WHERE e.word_id = w.id) AS n_enc\n"
    "FROM word w JOIN card c ON c.word_id = w.id ";

inline constexpr const char* newestFirst = " ORDER BY w.created_at DESC";

inline constexpr const char* matching =
    "WHERE w.lemma LIKE ?1 OR w.headword LIKE ?1 OR w.brief LIKE ?1\n"
    "   OR EXISTS (SELECT 1 FROM encounter e2 WHERE e2.word_id = w.id AND e2.sentence LIKE ?1)";

inline constexpr const char* mostOverdueFirst = "WHERE c.due <= ? ORDER BY c.due ASC LIMIT ?";

inline constexpr const char* withID = "WHERE w.id = ?";

inline constexpr const char* wordCount = "SELECT count(*) AS n FROM word";

inline constexpr const char* dueCount = "SELECT count(*) AS n FROM card WHERE due <= ?";

inline constexpr const char* reviewCount =
    "SELECT count(*) AS n FROM review_log WHERE reviewed_at >= ?";

inline constexpr const char* cachedExplanation = "SELECT json FROM explanation_cache WHERE key = ?";

inline constexpr const char* cacheExplanation =
    "INSERT OR REPLACE INTO explanation_cache (key, json, created_at) VALUES (?,?,?)";

} // namespace tavik::VocabularySQL
