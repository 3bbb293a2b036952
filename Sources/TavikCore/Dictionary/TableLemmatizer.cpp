#include "Dictionary/TableLemmatizer.h"

#include "Dictionary/DictionarySQL.h"

namespace tavik {

std::optional<std::string> TableLemmatizer::lemma(std::string_view word) const {
    const std::size_t firstWordEnd = std::min(word.find(' '), word.size());
    try {
        const auto rows =
            db.query(DictionarySQL::lemma, {std::string(word.substr(0, firstWordEnd))});
        if (rows.empty()) return std::nullopt;
        const auto base = rows.front().text("lemma");
        if (!base) return std::nullopt;
        return std::string(*base).append(word.substr(firstWordEnd));
    } catch (const SQLiteDB::Error&) {
        return std::nullopt;
    }
}

} // namespace tavik
