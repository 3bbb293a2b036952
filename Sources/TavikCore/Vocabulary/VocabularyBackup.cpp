#include "Vocabulary/VocabularyBackup.h"

#include "Base/AsideFile.h"
#include "Base/Links.h"
#include "Storage/SQLiteDB.h"
#include "Vocabulary/BookFailure.h"
#include "Vocabulary/BookFiles.h"
#include "Vocabulary/EmptiedBook.h"
#include "Vocabulary/VocabularySQL.h"
#include "Vocabulary/VocabularySchema.h"
#include "Vocabulary/VocabularyStore.h"

#include <string>
#include <string_view>
#include <system_error>
#include <utility>
#include <vector>

namespace tavik {
namespace fs = std::filesystem;

namespace {

bool areSame(const fs::path& one, const fs::path& other) {
    std::error_code error;
    return fs::equivalent(one, other, error);
}

bool isThere(const fs::path& path) {
    std::error_code ignored;
    return fs::exists(path, ignored);
}

std::int64_t rowCount(SQLiteDB& db, const std::string& table) {
    const auto rows = db.query("SELECT count(*) AS n FROM " + table);
    return rows.front().int_("n").value_or(0);
}

/// Whether SQLite finds the file itself in order.
bool isSound(SQLiteDB& db) {
    const auto rows = db.query("PRAGMA integrity_check");
    return rows.size() == 1 && rows.front().text("integrity_check") == "ok";
}

BookCounts countRows(SQLiteDB& db) {
    for (const auto& [name, columns] : VocabularySchema::tables)
        db.query("SELECT " + std::string(columns) + " FROM " + std::string(name) + " LIMIT 0");
    return {rowCount(db, "word"), rowCount(db, "encounter"), rowCount(db, "review_log")};
}

std::int64_t versionOf(SQLiteDB& db) {
    return db.query(VocabularySQL::version).front().int_("user_version").value_or(0);
}

[[noreturn]] void throwCopyFailure(const fs::path& target, const SQLiteDB::Error& error) {
    throw BackupError("没有复制成 " + target.string() + "，请检查磁盘空间和权限（" + error.message
                      + "）");
}

/// Whether the book can be opened and its rows replaced. Throws when the reason why not is no
/// damage.
bool isUsable(const fs::path& book) {
    if (!isThere(book) || isEmptiedBook(book.string())) return false;
    try {
        SQLiteDB db(book.string(), false);
        const std::int64_t version = versionOf(db);
        if (version > VocabularySchema::version)
            throw BackupError("现在的生词本 " + book.string()
                              + " 由更新的 Tavik 保存，请先升级 Tavik");
        if (version < VocabularySchema::version || !isSound(db)) return false;
        countRows(db);
        return true;
    } catch (const SQLiteDB::Error& error) {
        using Cause = SQLiteDB::Error::Cause;
        if (error.cause == Cause::damaged || error.cause == Cause::other) return false;
        throw;
    }
}

std::string insertion(std::string_view table, std::string_view columns) {
    std::string sql =
        "INSERT INTO " + std::string(table) + " (" + std::string(columns) + ") VALUES (?";
    for (const char character : columns)
        if (character == ',') sql += ",?";
    return sql + ')';
}

/// Makes a book at `target` with the rows of the checked `backup`, which is only read. It has this
/// program's own schema, whatever stands in the backup.
void makeBook(const fs::path& target, const fs::path& backup) {
    try {
        SQLiteDB from(backup.string(), true);
        SQLiteDB to(target.string(), false);
        // Without a log of its own, so that the file is whole once the transaction is committed.
        to.execute("PRAGMA journal_mode=DELETE");
        to.execute(VocabularySchema::creation);
        to.transaction([&] {
            for (const auto& [name, columns] : VocabularySchema::tables) {
                const std::string insert = insertion(name, columns);
                const std::string select =
                    "SELECT " + std::string(columns) + " FROM " + std::string(name);
                for (const auto& row : from.query(select))
                    to.query(insert, row.allValues());
            }
        });
    } catch (const SQLiteDB::Error& error) {
        throwCopyFailure(target, error);
    }
}

/// Gives the book the rows of the book `from`, and leaves a copy of it as it was in `kept`.
void replaceRows(const fs::path& book, const fs::path& from, const fs::path& kept) {
    SQLiteDB db(book.string(), false);
    db.query("ATTACH ? AS source", {from.string()});
    db.transaction([&] {
        // Nobody else can write now. The copy needs a reader of its own: a transaction cannot copy.
        AsideFile copy(kept);
        try {
            SQLiteDB(book.string(), true).query("VACUUM INTO ?", {copy.path().string()});
        } catch (const SQLiteDB::Error& error) {
            throwCopyFailure(kept, error);
        }
        copy.commit();
        // Else every row would look for its dependants.
        const std::vector dependantsFirst(VocabularySchema::tables.rbegin(),
                                          VocabularySchema::tables.rend());
        for (const auto& [name, columns] : dependantsFirst)
            db.execute("DELETE FROM main." + std::string(name));
        for (const auto& [name, columns] : VocabularySchema::tables)
            db.execute("INSERT INTO main." + std::string(name) + " (" + std::string(columns)
                       + ") SELECT " + std::string(columns) + " FROM source." + std::string(name));
    });
    db.execute("DETACH source");
}

/// Puts `copy` in the place of a book that cannot be used any more, and that into `kept`.
void replaceDamaged(const fs::path& book, AsideFile& copy, const fs::path& kept) {
    if (isInUse(book))
        throw BackupError("现在的生词本 " + book.string()
                          + " 已损坏，但另一个程序正在使用它。请先退出 Tavik 再恢复");
    MovedBook moved(book, kept);
    copy.commit();
    moved.keep();
}

} // namespace

BookCounts checkBook(const fs::path& path) {
    std::error_code error;
    if (!fs::is_regular_file(path, error))
        throw BackupError("没有 " + path.string() + " 这个文件，请检查文件名");
    if (isEmptiedBook(path.string())) throw BackupError(EmptiedBookError(path.string()).what());
    try {
        SQLiteDB db(path.string(), true);
        const std::int64_t version = versionOf(db);
        if (version > VocabularySchema::version)
            throw BackupError(path.string() + " 由更新的 Tavik 保存，请先升级 Tavik");
        if (version < VocabularySchema::version)
            throw BackupError(path.string() + " 不是 Tavik 的生词本");
        if (!isSound(db) || !db.query("PRAGMA foreign_key_check").empty())
            throw BackupError(path.string() + " 已损坏，不能使用");
        return countRows(db);
    } catch (const SQLiteDB::Error& failure) {
        using Cause = SQLiteDB::Error::Cause;
        if (failure.cause == Cause::readOnly || failure.cause == Cause::cannotOpen)
            throw BackupError("打不开 " + path.string() + "，请把它复制到可以写的目录里再试（"
                              + failure.message + "）");
        throw BackupError(bookFailure(path.string(), failure));
    }
}

void requireOutsideBook(const fs::path& target, const fs::path& book) {
    const std::string place = followingLinks(book).string();
    for (const char* const ending : bookEndings)
        if (areSame(target, place + ending) || followingLinks(target) == place + ending)
            throw BackupError(target.string() + " 就是生词本自己，请换一个文件名");
}

BookCounts backUpBook(const VocabularyStore& store, const fs::path& book, const fs::path& target,
                      Overwrite overwrite) {
    requireOutsideBook(target, book);
    if (overwrite == Overwrite::no && isThere(target))
        throw BackupError(target.string() + " 已经存在，请换一个文件名，或者加上 --force 覆盖它");
    for (const char* const ending : {"-wal", "-journal"})
        if (isThere(followingLinks(target).string() + ending))
            throw BackupError(target.string() + " 旁边有它的 " + ending
                              + " 文件，可能正被另一个程序使用，请换一个文件名");
    const DirectoryLock lock(directoryOf(target));
    AsideFile copy(target);
    try {
        store.copyTo(copy.path().string());
    } catch (const SQLiteDB::Error& error) {
        throwCopyFailure(target, error);
    }
    const BookCounts counts = checkBook(copy.path());
    copy.commit();
    return counts;
}

Restored restoreBook(const fs::path& backup, const fs::path& book, Date now) {
    const fs::path place = followingLinks(book);
    if (areSame(backup, place)) throw BackupError(backup.string() + " 就是现在的生词本，不必恢复");
    if (areSame(backup, AsideFile::placeFor(place)))
        throw BackupError(backup.string() + " 是没有写完的文件，请把它改名再试");
    checkBook(backup);
    const DirectoryLock lock(directoryOf(place));
    AsideFile copy(place);
    makeBook(copy.path(), backup);
    Restored restored{checkBook(copy.path()), std::nullopt};
    if (!existsAnyPart(place)) {
        copy.commit();
        return restored;
    }
    restored.kept = placeBeside(place, "before-restore", now);
    if (isUsable(place))
        replaceRows(place, copy.path(), *restored.kept);
    else
        replaceDamaged(place, copy, *restored.kept);
    return restored;
}

} // namespace tavik
