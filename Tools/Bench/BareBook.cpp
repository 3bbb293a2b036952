#include "BareBook.h"

#include "Vocabulary/VocabularySQL.h"

#include <sqlite3.h>

#include <stdexcept>

namespace tavik {
namespace {

using Statement = std::unique_ptr<sqlite3_stmt, int (*)(sqlite3_stmt*)>;

Statement prepared(sqlite3* handle, const std::string& sql) {
    sqlite3_stmt* statement = nullptr;
    if (sqlite3_prepare_v2(handle, sql.c_str(), -1, &statement, nullptr) != SQLITE_OK)
        throw std::runtime_error(sqlite3_errmsg(handle));
    return {statement, sqlite3_finalize};
}

/// Whether there is one more row.
bool step(sqlite3* handle, sqlite3_stmt* statement) {
    const int result = sqlite3_step(statement);
    if (result != SQLITE_ROW && result != SQLITE_DONE)
        throw std::runtime_error(sqlite3_errmsg(handle));
    return result == SQLITE_ROW;
}

std::string text(sqlite3_stmt* statement, int column) {
    const auto* const stored =
        reinterpret_cast<const char*>(sqlite3_column_text(statement, column));
    return stored == nullptr ? std::string() : std::string(stored);
}

BareEncounter encounter(sqlite3_stmt* row) {
    return {sqlite3_column_int64(row, 0),
            sqlite3_column_int64(row, 1),
            text(row, 2),
            text(row, 3),
            text(row, 4),
            text(row, 5),
            text(row, 6),
            text(row, 7),
            sqlite3_column_double(row, 8)};
}

BareItem itemWithoutLatest(sqlite3_stmt* row) {
    return {sqlite3_column_int64(row, 0),
            text(row, 1),
            text(row, 2),
            text(row, 3),
            text(row, 4),
            sqlite3_column_double(row, 5),
            sqlite3_column_int64(row, 6),
            text(row, 7),
            sqlite3_column_double(row, 8),
            sqlite3_column_double(row, 9),
            sqlite3_column_double(row, 10),
            sqlite3_column_int64(row, 11),
            sqlite3_column_int64(row, 12),
            sqlite3_column_double(row, 13),
            sqlite3_column_int64(row, 14),
            {}};
}

std::vector<BareEncounter> encounters(sqlite3* handle, std::int64_t wordID) {
    const auto statement = prepared(handle, VocabularySQL::encounters);
    sqlite3_bind_int64(statement.get(), 1, wordID);
    std::vector<BareEncounter> encounters;
    while (step(handle, statement.get()))
        encounters.push_back(encounter(statement.get()));
    return encounters;
}

} // namespace

BareBook::BareBook(const std::string& path) : handle(nullptr, sqlite3_close) {
    sqlite3* opened = nullptr;
    const int result = sqlite3_open(path.c_str(), &opened);
    handle.reset(opened);
    if (result != SQLITE_OK) throw std::runtime_error("cannot open " + path);
}

std::vector<BareItem> BareBook::items() const {
    const auto statement =
        prepared(handle.get(), std::string(VocabularySQL::items) + VocabularySQL::newestFirst);
    std::vector<BareItem> items;
    while (step(handle.get(), statement.get())) {
        BareItem& item = items.emplace_back(itemWithoutLatest(statement.get()));
        auto met = encounters(handle.get(), item.id);
        if (!met.empty()) item.latest = std::move(met.front());
    }
    return items;
}

} // namespace tavik
