#pragma once

#include <array>
#include <string_view>

/// The format of the user's vocabulary file. Times are REAL seconds since 1970-01-01 00:00 UTC.
namespace tavik::VocabularySchema {

inline constexpr int version = 1;

/// Run once on an empty file; its last statement sets the version.
inline constexpr const char* creation = R"(CREATE TABLE word (
    id INTEGER PRIMARY KEY,
    lemma TEXT NOT NULL UNIQUE COLLATE NOCASE,
    headword TEXT NOT NULL,
    phonetic TEXT NOT NULL DEFAULT '',
    brief TEXT NOT NULL DEFAULT '',
    created_at REAL NOT NULL
);
CREATE TABLE encounter (
    id INTEGER PRIMARY KEY,
    word_id INTEGER NOT NULL REFERENCES word(id) ON DELETE CASCADE,
    selection TEXT NOT NULL,
    sentence TEXT,
    context_meaning TEXT,
    source_app TEXT,
    source_bundle_id TEXT,
    url TEXT,
    seen_at REAL NOT NULL
);
CREATE INDEX encounter_word ON encounter(word_id, seen_at);
CREATE TABLE card (
    word_id INTEGER PRIMARY KEY REFERENCES word(id) ON DELETE CASCADE,
    state TEXT NOT NULL,
    due REAL NOT NULL,
    stability REAL NOT NULL,
    difficulty REAL NOT NULL,
    reps INTEGER NOT NULL,
    lapses INTEGER NOT NULL,
    last_review REAL
);
CREATE INDEX card_due ON card(due);
CREATE TABLE review_log (
    id INTEGER PRIMARY KEY,
    word_id INTEGER NOT NULL REFERENCES word(id) ON DELETE CASCADE,
    rating INTEGER NOT NULL,
    state_before TEXT NOT NULL,
    reviewed_at REAL NOT NULL,
    elapsed_days REAL NOT NULL,
    scheduled_days REAL NOT NULL
);
CREATE TABLE explanation_cache (
    key TEXT PRIMARY KEY,
    json TEXT NOT NULL,
    created_at REAL NOT NULL
);
PRAGMA user_version = 1;)";

struct Table {
    std::string_view name;
    /// All columns, with commas.
    std::string_view columns;
};

/// Every table, those that others refer to first.
inline constexpr std::array tables{
    Table{"word", "id, lemma, headword, phonetic, brief, created_at"},
    Table{"encounter", "id, word_id, selection, sentence, context_meaning, source_app, "
                       "source_bundle_id, url, seen_at"},
    Table{"card", "word_id, state, due, stability, difficulty, reps, lapses, last_review"},
    Table{"review_log",
          "id, word_id, rating, state_before, reviewed_at, elapsed_days, scheduled_days"},
    Table{"explanation_cache", "key, json, created_at"},
};

} // namespace tavik::VocabularySchema
