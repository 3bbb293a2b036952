#pragma once

#include "Base/Date.h"

#include <cstdint>
#include <functional>
#include <limits>
#include <memory>
#include <mutex>
#include <optional>
#include <stdexcept>
#include <string>
#include <string_view>
#include <type_traits>
#include <utility>
#include <variant>
#include <vector>

struct sqlite3;

namespace tavik {

/// One open SQLite database, and the only door to SQLite in the program.
///
/// It runs statements, runs parameterised queries, runs a block in a transaction, and tells the
/// last inserted row id. Any thread may call it: one recursive lock serialises every operation,
/// and a transaction holds it from BEGIN to COMMIT. A read-write connection is in write-ahead-log
/// mode with foreign keys enforced and every commit fully synchronous; a read-only one leaves the
/// file exactly as it finds it. Every failure is an `Error`, and the connection stays usable.
class SQLiteDB {
public:
    using Null = std::monostate;
    using Value = std::variant<std::int64_t, double, std::string, Null>;
    class Error;
    class Row;

    /// Opens `path`, creating the file unless `readOnly`. Throws `Error`.
    SQLiteDB(const std::string& path, bool readOnly);
    ~SQLiteDB();
    SQLiteDB(const SQLiteDB&) = delete;
    SQLiteDB& operator=(const SQLiteDB&) = delete;

    /// Runs one or more statements, discarding what they return. A failure is of kind `step`.
    void execute(const std::string& sql);

    static constexpr std::size_t allRows = std::numeric_limits<std::size_t>::max();

    /// Runs one statement with positional parameters and returns its rows in order. With fewer than
    /// `allRows` wanted, the rest are not even looked for; that is for statements that only read.
    std::vector<Row> query(const std::string& sql, const std::vector<Value>& args = {},
                           std::size_t maxRows = allRows);

    /// Runs `body` inside BEGIN IMMEDIATE … COMMIT and returns its result. When the body or the
    /// commit throws, everything is rolled back and that first error is passed on.
    template<typename Body>
    std::invoke_result_t<Body> transaction(Body&& body);

    /// Row id of the latest insert on this connection; meaningful only inside the transaction that
    /// made it.
    std::int64_t lastInsertRowID() const;

private:
    class Transaction;

    std::unique_ptr<sqlite3, int (*)(sqlite3*)> handle;
    mutable std::recursive_mutex lock;
};

/// A failed SQLite call; `what()` is the whole description, `message` SQLite's own words.
class SQLiteDB::Error : public std::runtime_error {
public:
    enum class Kind { open, prepare, step };

    /// What stands behind the failure, as far as a user could do something about it.
    enum class Cause { other, busy, readOnly, cannotOpen, full, damaged, inputOutput };

    static Error open(const std::string& message, Cause cause = Cause::other);
    static Error prepare(const std::string& message, const std::string& sql,
                         Cause cause = Cause::other);
    static Error step(const std::string& message, Cause cause = Cause::other);

    Kind kind;
    Cause cause;
    std::string message;
    /// The statement, for `prepare` only.
    std::string sql;

private:
    Error(Kind kind, Cause cause, const std::string& description, std::string message,
          std::string sql = {});
};

/// One result row, read by column name. Of two columns of one name the later counts. An accessor
/// gives nothing for a missing column and for a value of another type.
class SQLiteDB::Row {
public:
    using ColumnNames = std::vector<std::string>;

    /// `values` stand in the order of `names`, which all rows of a result share.
    Row(std::shared_ptr<const ColumnNames> names, std::vector<Value> values);

    /// A REAL value is truncated toward zero; one that is no 64-bit integer stops the program.
    std::optional<std::int64_t> int_(std::string_view column) const;
    std::optional<double> double_(std::string_view column) const;
    /// The text lives as long as this row.
    std::optional<std::string_view> text(std::string_view column) const&;
    std::optional<std::string_view> text(std::string_view column) && = delete;
    std::optional<Date> date(std::string_view column) const;

    /// The value as it is stored, or nullptr for a missing column.
    const Value* value(std::string_view column) const;

    /// The values of all columns, in their order.
    const std::vector<Value>& allValues() const { return values; }

private:
    std::shared_ptr<const ColumnNames> names;
    std::vector<Value> values;
};

/// Begins on construction; rolls back on destruction unless committed, and never throws then.
class SQLiteDB::Transaction {
public:
    explicit Transaction(SQLiteDB& db) : db(db) { db.execute("BEGIN IMMEDIATE"); }

    ~Transaction();
    Transaction(const Transaction&) = delete;
    Transaction& operator=(const Transaction&) = delete;

    void commit();

private:
    SQLiteDB& db;
    bool open = true;
};

template<typename Body>
std::invoke_result_t<Body> SQLiteDB::transaction(Body&& body) {
    const std::lock_guard guard(lock);
    Transaction transaction(*this);
    if constexpr (std::is_void_v<std::invoke_result_t<Body>>) {
        std::invoke(std::forward<Body>(body));
        transaction.commit();
    } else {
        auto result = std::invoke(std::forward<Body>(body));
        transaction.commit();
        return result;
    }
}

} // namespace tavik
