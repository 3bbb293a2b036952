#include "Storage/SQLiteDB.h"

#include "Base/Fatal.h"

#include <sqlite3.h>

#include <algorithm>
#include <chrono>
#include <cmath>
#include <thread>

namespace tavik {
namespace {

constexpr std::chrono::milliseconds busyTimeout(3000);

/// SQLite counts the memory it uses, under a lock, at every allocation; nobody asks for the count.
void configureOnce() {
    static const int result = sqlite3_config(SQLITE_CONFIG_MEMSTATUS, 0);
    static_cast<void>(result);
}

using Statement = std::unique_ptr<sqlite3_stmt, int (*)(sqlite3_stmt*)>;

/// Binds one value at the 1-based parameter index it is called with.
struct Bind {
    sqlite3_stmt* statement;
    int index;

    int operator()(std::int64_t value) const { return sqlite3_bind_int64(statement, index, value); }

    int operator()(double value) const { return sqlite3_bind_double(statement, index, value); }

    int operator()(const std::string& value) const {
        return sqlite3_bind_text(statement, index, value.c_str(), -1, SQLITE_TRANSIENT);
    }

    int operator()(SQLiteDB::Null) const { return sqlite3_bind_null(statement, index); }
};

SQLiteDB::Error::Cause lastCause(sqlite3* handle) {
    using Cause = SQLiteDB::Error::Cause;
    constexpr int primaryCode = 0xFF;
    switch (sqlite3_errcode(handle) & primaryCode) {
    case SQLITE_BUSY:
    case SQLITE_LOCKED:
        return Cause::busy;
    case SQLITE_READONLY:
        return Cause::readOnly;
    case SQLITE_CANTOPEN:
    case SQLITE_PERM:
        return Cause::cannotOpen;
    case SQLITE_FULL:
        return Cause::full;
    case SQLITE_CORRUPT:
    case SQLITE_NOTADB:
        return Cause::damaged;
    case SQLITE_IOERR:
        return Cause::inputOutput;
    default:
        return Cause::other;
    }
}

SQLiteDB::Error stepError(sqlite3* handle) {
    return SQLiteDB::Error::step(sqlite3_errmsg(handle), lastCause(handle));
}

/// While another program is creating the same file, SQLite refuses this switch at once, where for
/// any other lock it would wait.
void enterWriteAheadLog(SQLiteDB& db) {
    constexpr std::chrono::milliseconds pause(5);
    const auto deadline = std::chrono::steady_clock::now() + busyTimeout;
    for (;;) {
        try {
            return db.execute("PRAGMA journal_mode=WAL");
        } catch (const SQLiteDB::Error& error) {
            const bool mayWait = std::chrono::steady_clock::now() + pause < deadline;
            if (error.cause != SQLiteDB::Error::Cause::busy || !mayWait) throw;
        }
        std::this_thread::sleep_for(pause);
    }
}

std::string requiredText(const char* text, std::string_view what) {
    if (text == nullptr) fatal(what);
    return text;
}

SQLiteDB::Value columnValue(sqlite3_stmt* statement, int column) {
    switch (sqlite3_column_type(statement, column)) {
    case SQLITE_INTEGER:
        return std::int64_t{sqlite3_column_int64(statement, column)};
    case SQLITE_FLOAT:
        return sqlite3_column_double(statement, column);
    case SQLITE_NULL:
        return SQLiteDB::Null{};
    default:
        return requiredText(reinterpret_cast<const char*>(sqlite3_column_text(statement, column)),
                            "SQLite gave no text for a text column");
    }
}

std::shared_ptr<const SQLiteDB::Row::ColumnNames> columnNames(sqlite3_stmt* statement) {
    auto names = std::make_shared<SQLiteDB::Row::ColumnNames>();
    const int count = sqlite3_column_count(statement);
    names->reserve(static_cast<std::size_t>(count));
    for (int column = 0; column < count; ++column)
        names->push_back(requiredText(sqlite3_column_name(statement, column),
                                      "SQLite gave no name for a column"));
    return names;
}

SQLiteDB::Row readRow(sqlite3_stmt* statement,
                      const std::shared_ptr<const SQLiteDB::Row::ColumnNames>& names) {
    std::vector<SQLiteDB::Value> values;
    values.reserve(names->size());
    for (int column = 0; column < static_cast<int>(names->size()); ++column)
        values.push_back(columnValue(statement, column));
    return {names, std::move(values)};
}

} // namespace

SQLiteDB::SQLiteDB(const std::string& path, bool readOnly) : handle(nullptr, sqlite3_close) {
    configureOnce();
    const int mode = readOnly ? SQLITE_OPEN_READONLY : SQLITE_OPEN_READWRITE | SQLITE_OPEN_CREATE;
    sqlite3* opened = nullptr;
    const int result =
        sqlite3_open_v2(path.c_str(), &opened, mode | SQLITE_OPEN_FULLMUTEX, nullptr);
    handle.reset(opened);
    if (result != SQLITE_OK)
        throw handle ? Error::open(sqlite3_errmsg(opened), lastCause(opened))
                     : Error::open("unknown");
    sqlite3_busy_timeout(opened, static_cast<int>(busyTimeout.count()));
    if (!readOnly) {
        enterWriteAheadLog(*this);
        execute("PRAGMA foreign_keys=ON");
    }
}

SQLiteDB::~SQLiteDB() = default;

void SQLiteDB::execute(const std::string& sql) {
    const std::lock_guard guard(lock);
    if (sqlite3_exec(handle.get(), sql.c_str(), nullptr, nullptr, nullptr) != SQLITE_OK)
        throw stepError(handle.get());
}

std::vector<SQLiteDB::Row> SQLiteDB::query(const std::string& sql, const std::vector<Value>& args,
                                           std::size_t maxRows) {
    const std::lock_guard guard(lock);
    sqlite3_stmt* prepared = nullptr;
    if (sqlite3_prepare_v2(handle.get(), sql.c_str(), -1, &prepared, nullptr) != SQLITE_OK)
        throw Error::prepare(sqlite3_errmsg(handle.get()), sql, lastCause(handle.get()));
    const Statement statement(prepared, sqlite3_finalize);

    for (std::size_t i = 0; i < args.size(); ++i)
        if (std::visit(Bind{prepared, static_cast<int>(i) + 1}, args[i]) != SQLITE_OK)
            throw stepError(handle.get());

    std::shared_ptr<const Row::ColumnNames> names;
    std::vector<Row> rows;
    while (rows.size() < maxRows) {
        switch (sqlite3_step(prepared)) {
        case SQLITE_ROW:
            if (!names) names = columnNames(prepared);
            rows.push_back(readRow(prepared, names));
            break;
        case SQLITE_DONE:
            return rows;
        default:
            throw stepError(handle.get());
        }
    }
    return rows;
}

std::int64_t SQLiteDB::lastInsertRowID() const {
    const std::lock_guard guard(lock);
    return sqlite3_last_insert_rowid(handle.get());
}

SQLiteDB::Transaction::~Transaction() {
    if (!open) return;
    try {
        db.execute("ROLLBACK");
    } catch (const Error&) {
        // The error that led here is already on its way to the caller; it is the first and counts.
    }
}

void SQLiteDB::Transaction::commit() {
    db.execute("COMMIT");
    open = false;
}

SQLiteDB::Error::Error(Kind kind, Cause cause, const std::string& description, std::string message,
                       std::string sql)
    : std::runtime_error(description), kind(kind), cause(cause), message(std::move(message)),
      sql(std::move(sql)) {}

SQLiteDB::Error SQLiteDB::Error::open(const std::string& message, Cause cause) {
    return {Kind::open, cause, "SQLite open failed: " + message, message};
}

SQLiteDB::Error SQLiteDB::Error::prepare(const std::string& message, const std::string& sql,
                                         Cause cause) {
    return {Kind::prepare, cause, "SQLite prepare failed: " + message + " — " + sql, message, sql};
}

SQLiteDB::Error SQLiteDB::Error::step(const std::string& message, Cause cause) {
    return {Kind::step, cause, "SQLite step failed: " + message, message};
}

SQLiteDB::Row::Row(std::shared_ptr<const ColumnNames> names, std::vector<Value> values)
    : names(std::move(names)), values(std::move(values)) {}

const SQLiteDB::Value* SQLiteDB::Row::value(std::string_view column) const {
    const auto found = std::find(names->rbegin(), names->rend(), column);
    if (found == names->rend()) return nullptr;
    return &values[static_cast<std::size_t>(names->rend() - found) - 1];
}

std::optional<std::int64_t> SQLiteDB::Row::int_(std::string_view column) const {
    const Value* stored = value(column);
    if (stored == nullptr) return std::nullopt;
    if (const auto* whole = std::get_if<std::int64_t>(stored)) return *whole;
    const auto* real = std::get_if<double>(stored);
    if (real == nullptr) return std::nullopt;
    constexpr double bound = 0x1p63;
    if (!(*real >= -bound && *real < bound)) fatal("a REAL value is no 64-bit integer");
    return static_cast<std::int64_t>(*real);
}

std::optional<double> SQLiteDB::Row::double_(std::string_view column) const {
    const Value* stored = value(column);
    if (stored == nullptr) return std::nullopt;
    if (const auto* real = std::get_if<double>(stored)) return *real;
    if (const auto* whole = std::get_if<std::int64_t>(stored)) return static_cast<double>(*whole);
    return std::nullopt;
}

std::optional<std::string_view> SQLiteDB::Row::text(std::string_view column) const& {
    const Value* stored = value(column);
    if (stored == nullptr) return std::nullopt;
    if (const auto* held = std::get_if<std::string>(stored)) return *held;
    return std::nullopt;
}

std::optional<Date> SQLiteDB::Row::date(std::string_view column) const {
    const auto seconds = double_(column);
    if (!seconds) return std::nullopt;
    return dateFromSeconds(*seconds);
}

} // namespace tavik
