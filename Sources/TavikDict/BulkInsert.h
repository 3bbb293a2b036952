#pragma once

#include "Storage/SQLiteDB.h"

#include <string>
#include <vector>

namespace tavik {

/// Inserts rows many at a time: preparing a statement for each row would cost more than the insert.
class BulkInsert {
public:
    /// `into` is the statement up to VALUES, for example "INSERT INTO t(a, b)".
    BulkInsert(SQLiteDB& db, std::string into, std::size_t columns);

    /// Adds one row of as many values as there are columns.
    void add(std::vector<SQLiteDB::Value> row);
    /// Inserts what has been added since the last full batch.
    void finish();

private:
    SQLiteDB& db;
    std::string into;
    std::size_t columns;
    std::vector<SQLiteDB::Value> pending;
    std::string fullBatch;
};

} // namespace tavik
