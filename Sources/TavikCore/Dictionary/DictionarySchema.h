#pragma once

/// The tables of a dictionary file, for whoever makes one. A finished file must not be in
/// write-ahead-log mode: it is read where nothing can be written beside it.
namespace tavik::DictionarySchema {

/// The column `word` compares byte by byte, so that ordering by equality finds the exact case; the
/// index ignores ASCII case, so that every spelling is found. `ranks` holds the common headwords
/// only, 1 being the most common; it is sorted by word, so that it is an index of its own.
inline constexpr const char* tables = R"(
CREATE TABLE dict (
    word TEXT NOT NULL, phonetic TEXT, translation TEXT, definition TEXT, tag TEXT,
    collins INTEGER, oxford INTEGER, exchange TEXT);
CREATE TABLE lemmas (form TEXT PRIMARY KEY, lemma TEXT NOT NULL) WITHOUT ROWID;
CREATE TABLE ranks (
    word TEXT NOT NULL COLLATE NOCASE, rank INTEGER NOT NULL, PRIMARY KEY (word, rank)) WITHOUT ROWID;
CREATE TABLE examples (id INTEGER PRIMARY KEY, en TEXT NOT NULL, zh TEXT NOT NULL);
)";

/// The full-text index holds no text of its own: `en` is the sentence, `lem` the same sentence with
/// each word as its base form, or empty where that changes nothing. So «run» finds «ran».
inline constexpr const char* indexes = R"(
CREATE INDEX dict_word ON dict(word COLLATE NOCASE);
CREATE INDEX ranks_most_common ON ranks(word, rank) WHERE rank <= 5000;
CREATE VIRTUAL TABLE examples_fts USING fts5(
    en, lem, content='', columnsize=0, tokenize='unicode61');
)";

} // namespace tavik::DictionarySchema
