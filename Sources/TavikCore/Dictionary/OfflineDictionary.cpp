#include "Dictionary/OfflineDictionary.h"

#include "Base/Fatal.h"
#include "Dictionary/DictionarySQL.h"
#include "Dictionary/Exchange.h"
#include "Dictionary/TypedPrefix.h"
#include "Text/CharacterClasses.h"
#include "Text/TextUtil.h"
#include "Text/Unicode.h"

#include <algorithm>
#include <cmath>
#include <unordered_set>

namespace tavik {
namespace {

/// The base form in `DictEntry::exchange`.
constexpr const char* baseFormKey = "0";
/// How many rows are read for one sentence wanted, for some repeat others up to case.
constexpr std::int64_t rowsPerExample = 4;
/// How many headwords are looked at for those that are not common, as they come in the index.
constexpr std::int64_t othersLookedAt = 400;

std::string_view textOrEmpty(const SQLiteDB::Row& row, std::string_view column) {
    return row.text(column).value_or(std::string_view());
}

/// A small whole number as `Row::int_` reads it, but 0 for anything that is none.
int smallNumber(const SQLiteDB::Row& row, std::string_view column) {
    constexpr double bound = 1e9;
    const double number = row.double_(column).value_or(0);
    return std::abs(number) < bound ? static_cast<int>(number) : 0;
}

std::vector<std::string> lines(std::string_view text) {
    std::vector<std::string> result;
    for (const std::string_view piece : split(text, isNewline)) {
        const std::string_view line = trimmed(piece, isBlank);
        if (!line.empty()) result.emplace_back(line);
    }
    return result;
}

std::vector<std::string> tags(std::string_view text) {
    const auto pieces = split(text, [](char32_t scalar) { return scalar == ' '; });
    return {pieces.begin(), pieces.end()};
}

DictEntry makeEntry(const SQLiteDB::Row& row) {
    DictEntry entry;
    entry.word = textOrEmpty(row, "word");
    entry.phonetic = TextUtil::normalizePhonetic(textOrEmpty(row, "phonetic"));
    entry.translations = lines(textOrEmpty(row, "translation"));
    entry.definitions = lines(textOrEmpty(row, "definition"));
    entry.tags = tags(textOrEmpty(row, "tag"));
    entry.collins = smallNumber(row, "collins");
    entry.oxford = smallNumber(row, "oxford") == 1;
    entry.exchange = parseExchange(textOrEmpty(row, "exchange"));
    return entry;
}

bool isPhraseScalar(char32_t scalar) {
    return isLetter(scalar) || scalar == '\'' || scalar == ' ' || scalar == '-';
}

/// `word` as one quoted phrase of the full-text search, or nothing when no letter is left of it.
std::optional<std::string> quotedPhrase(std::string_view word) {
    const std::string phrase = filteredScalars(lowercased(word), isPhraseScalar);
    if (phrase.empty()) return std::nullopt;
    return '"' + replacingAll(phrase, "\"", "") + '"';
}

/// Gathers the suggestions for one prefix.
class Suggestions {
public:
    Suggestions(SQLiteDB& db, int limit) : db(db), limit(limit) {}

    void gather(const TypedPrefix& prefix) {
        add(DictionarySQL::spellings, {prefix.word, prefix.word, limit});
        add(DictionarySQL::mostCommonWords, {prefix.lower, prefix.upper, limit});
        add(DictionarySQL::commonWords, {prefix.lower, prefix.upper, limit});
        add(DictionarySQL::otherWords,
            {prefix.lower, prefix.upper, std::max(limit, othersLookedAt), limit});
    }

    const std::vector<Suggestion>& all() const { return found; }

private:
    bool isFull() const { return static_cast<std::int64_t>(found.size()) >= limit; }

    /// Adds the rows of a statement as far as there is room. One that fails adds none, so that a
    /// file without ranks still answers.
    void add(const std::string& sql, const std::vector<SQLiteDB::Value>& args) {
        if (isFull()) return;
        try {
            for (const SQLiteDB::Row& row : db.query(sql, args)) {
                if (isFull()) return;
                add(row);
            }
        } catch (const SQLiteDB::Error&) {
            return;
        }
    }

    void add(const SQLiteDB::Row& row) {
        const std::string_view word = textOrEmpty(row, "word");
        if (word.empty() || !taken.emplace(word).second) return;
        auto glosses = lines(textOrEmpty(row, "translation"));
        found.push_back(
            {std::string(word), glosses.empty() ? std::string() : std::move(glosses.front())});
    }

    SQLiteDB& db;
    std::int64_t limit;
    std::unordered_set<std::string> taken;
    std::vector<Suggestion> found;
};

} // namespace

OfflineDictionary::OfflineDictionary(const std::string& path) : db(path, true), lemmatizer(db) {}

void OfflineDictionary::verify() const {
    db.query(DictionarySQL::entry, {std::string("word"), std::string("word")});
    db.query(DictionarySQL::lemma, {std::string("words")});
    // No sentence holds this term, so that nothing has to be sorted.
    db.query(DictionarySQL::examples, {std::string("\"zzyzzy\""), std::int64_t{1}});
}

std::optional<DictEntry> OfflineDictionary::entry(std::string_view word) const {
    const std::string wanted(trimmed(word, isWhiteSpace));
    if (wanted.empty()) return std::nullopt;
    try {
        const auto rows = db.query(DictionarySQL::entry, {wanted, wanted});
        if (rows.empty()) return std::nullopt;
        return makeEntry(rows.front());
    } catch (const SQLiteDB::Error&) {
        return std::nullopt;
    }
}

std::string OfflineDictionary::lemma(std::string_view word) const {
    std::string normal = TextUtil::normalizeWord(word);
    if (const auto own = entry(normal)) {
        const auto base = own->exchange.find(baseFormKey);
        if (base != own->exchange.end() && entry(base->second)) return lowercased(base->second);
    }
    const auto reduced = lemmatizer.lemma(normal);
    if (reduced && *reduced != normal && entry(*reduced)) return *reduced;
    return normal;
}

std::vector<ExampleSentence> OfflineDictionary::examples(std::string_view word, int limit) const {
    const auto phrase = quotedPhrase(word);
    if (!phrase || limit <= 0) return {};
    std::vector<ExampleSentence> sentences;
    std::unordered_set<std::string> taken;
    try {
        for (const auto& row :
             db.query(DictionarySQL::examples, {*phrase, limit * rowsPerExample})) {
            const auto en = row.text("en");
            const auto zh = row.text("zh");
            if (!en || !zh || !taken.insert(lowercased(*en)).second) continue;
            sentences.push_back({std::string(*en), TextUtil::toSimplified(*zh)});
            if (sentences.size() == static_cast<std::size_t>(limit)) break;
        }
    } catch (const SQLiteDB::Error&) {
        return {};
    }
    return sentences;
}

std::vector<Suggestion> OfflineDictionary::suggestions(std::string_view prefix, int limit) const {
    if (limit <= 0) return {};
    Suggestions suggestions(db, limit);
    // As it was typed first, for there are headwords such as «e.g.» and «'til».
    for (const std::string& text : {std::string(prefix), TextUtil::normalizeWord(prefix)}) {
        if (!suggestions.all().empty()) break;
        if (const auto typed = typedPrefix(text)) suggestions.gather(*typed);
    }
    return suggestions.all();
}

} // namespace tavik
