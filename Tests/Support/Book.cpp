#include "Support/Book.h"

#include "Vocabulary/VocabularySchema.h"

namespace tavik::test {

std::string dump(const std::string& path) {
    SQLiteDB db(path, true);
    std::string text;
    for (const auto& [name, columns] : VocabularySchema::tables) {
        text += std::string(name) + '\n';
        const std::string list(columns);
        for (const auto& row : db.query("SELECT json_array(" + list + ") AS line FROM "
                                        + std::string(name) + " ORDER BY rowid"))
            text += std::string(row.text("line").value_or("")) + '\n';
    }
    return text;
}

std::string quickCheck(const std::string& path) {
    SQLiteDB db(path, true);
    return std::string(db.query("PRAGMA quick_check").front().text("quick_check").value_or(""));
}

} // namespace tavik::test
