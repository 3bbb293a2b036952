#include "Dictionary/OfflineDictionary.h"

#include "Base/Fatal.h"
#include "Dictionary/DictionarySQL.h"
#include "Dictionary/Exchange.h"
#include "Text/CharacterClasses.h"
#include "Text/TextUtil.h"
#include "Text/Unicode.h"

#include <cmath>
#include <unordered_set>

namespace tavik {
namespace {

/// The base form in `DictEntry::exchange`.
constexpr const char* baseFormKey = "0";
/// How many rows are read for one sentence wanted, for some repeat others up to case.
constexpr std::int64_t rowsPerExample = 4;

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

} // namespace tavik
