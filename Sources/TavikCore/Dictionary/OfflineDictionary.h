#pragma once

#include "Dictionary/DictionaryRecords.h"
#include "Dictionary/TableLemmatizer.h"
#include "Storage/SQLiteDB.h"

#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace tavik {

/// The read-only English–Chinese dictionary in a file that `tavik-dict` builds.
///
/// Any thread may call it. Only construction and `verify` throw: a failing query reads as not
/// found, odd column contents read as empty. The file holds four tables and a full-text index:
///
///     dict(word, phonetic, translation, definition, tag, collins, oxford, exchange)
///     lemmas(form, lemma)
///     ranks(word, rank), which older files lack
///     examples(id, en, zh), and examples_fts, whose rowid is examples.id
class OfflineDictionary {
public:
    /// Opens the file at `path`; throws `SQLiteDB::Error` when it cannot be opened.
    explicit OfflineDictionary(const std::string& path);

    /// Throws `SQLiteDB::Error` when the file turns out not to be a readable dictionary. Opening
    /// reads nothing of the file, so a damaged or foreign one shows only here.
    void verify() const;

    /// The entry of a headword, whatever its case; of «Polish» and «polish» each finds its own.
    std::optional<DictEntry> entry(std::string_view word) const;

    /// The base form under which `word` is filed: the dictionary's own base form, else the
    /// lemmatizer's, each only if it is a headword; else the normal form of `word`.
    std::string lemma(std::string_view word) const;

    /// At most `limit` sentences with the word or phrase, translated ones first and among them
    /// those of about 55 characters; no two equal up to case. Chinese comes simplified.
    std::vector<ExampleSentence> examples(std::string_view word, int limit) const;

    /// At most `limit` headwords that begin with `prefix`, whatever its ASCII case: first the word
    /// itself, then the most common ones, then, as far as they go, others, short ones before long
    /// ones; no word twice. A blank at the end of `prefix` asks for the word and phrases that begin
    /// with it. Punctuation at the ends is passed over when nothing begins with it. Text without a
    /// Latin letter finds nothing.
    std::vector<Suggestion> suggestions(std::string_view prefix, int limit) const;

private:
    mutable SQLiteDB db;
    TableLemmatizer lemmatizer;
};

} // namespace tavik
