#include "TavikDict/BulkInsert.h"

#include <iterator>

namespace tavik {
namespace {

constexpr std::size_t rowsPerStatement = 100;

std::string statement(const std::string& into, std::size_t columns, std::size_t rows) {
    std::string row = "(?";
    for (std::size_t column = 1; column < columns; ++column)
        row += ",?";
    row += ')';
    std::string sql = into + " VALUES " + row;
    for (std::size_t i = 1; i < rows; ++i)
        sql += ',' + row;
    return sql;
}

} // namespace

BulkInsert::BulkInsert(SQLiteDB& db, std::string into, std::size_t columns)
    : db(db), into(std::move(into)), columns(columns),
      fullBatch(statement(this->into, columns, rowsPerStatement)) {}

void BulkInsert::add(std::vector<SQLiteDB::Value> row) {
    pending.insert(pending.end(), std::make_move_iterator(row.begin()),
                   std::make_move_iterator(row.end()));
    if (pending.size() < columns * rowsPerStatement) return;
    db.query(fullBatch, pending);
    pending.clear();
}

void BulkInsert::finish() {
    if (pending.empty()) return;
    db.query(statement(into, columns, pending.size() / columns), pending);
    pending.clear();
}

} // namespace tavik
