#include "Vocabulary/VocabularyBackup.h"

#include "Base/AsideFile.h"
#include "Storage/SQLiteDB.h"
#include "Vocabulary/BookFailure.h"
#include "Vocabulary/EmptiedBook.h"
#include "Vocabulary/VocabularySQL.h"
#include "Vocabulary/VocabularySchema.h"
#include "Vocabulary/VocabularyStore.h"

#include <algorithm>
#include <array>
#include <cctype>
#include <string>
#include <system_error>
#include <vector>

namespace tavik {
namespace fs = std::filesystem;

namespace {

/// What belongs to a book on the disk, the file itself last.
constexpr std::array bookEndings{"-wal", "-shm", ""};

bool areSame(const fs::path& one, const fs::path& other) {
    std::error_code error;
    return fs::equivalent(one, other, error);
}

bool existsAnyPart(const fs::path& book) {
    std::error_code ignored;
    return std::ranges::any_of(bookEndings, [&](const char* ending) {
        return fs::exists(book.string() + ending, ignored);
    });
}

std::int64_t rowCount(SQLiteDB& db, const std::string& table) {
    const auto rows = db.query("SELECT count(*) AS n FROM " + table);
    return rows.front().int_("n").value_or(0);
}

/// Whether SQLite finds nothing wrong with the file.
bool isSound(SQLiteDB& db) {
    const auto rows = db.query("PRAGMA integrity_check");
    return rows.size() == 1 && rows.front().text("integrity_check") == "ok"
           && db.query("PRAGMA foreign_key_check").empty();
}

BookCounts countRows(SQLiteDB& db) {
    for (const auto& [name, columns] : VocabularySchema::tables)
        db.query("SELECT " + std::string(columns) + " FROM " + std::string(name) + " LIMIT 0");
    return {rowCount(db, "word"), rowCount(db, "encounter"), rowCount(db, "review_log")};
}

std::int64_t versionOf(SQLiteDB& db) {
    return db.query(VocabularySQL::version).front().int_("user_version").value_or(0);
}

/// Writes what `source` holds into the new file `target`.
template<typename Copy>
void copyInto(const fs::path& target, const Copy& copy) {
    try {
        copy(target.string());
    } catch (const SQLiteDB::Error& error) {
        throw BackupError("没有复制成 " + target.string() + "，请检查磁盘空间和权限（"
                          + error.message + "）");
    }
}

/// "20261121-113852", in UTC.
std::string stamp(Date now) {
    std::string digits;
    for (const char character : iso8601(std::chrono::floor<std::chrono::seconds>(now))) {
        if (character == 'T') digits += '-';
        if (character == '.') break;
        if (std::isdigit(static_cast<unsigned char>(character)) != 0) digits += character;
    }
    return digits;
}

/// A name beside the book that nothing has yet.
fs::path placeAside(const fs::path& book, Date now) {
    const std::string name = book.string() + ".before-restore-" + stamp(now);
    fs::path place = name;
    for (int number = 2; existsAnyPart(place); ++number)
        place = name + '-' + std::to_string(number);
    return place;
}

/// Whether the book can be opened and is whole. Throws when the reason why not is no damage.
bool isUsable(const fs::path& book) {
    if (!fs::exists(book) || isEmptiedBook(book.string())) return false;
    try {
        SQLiteDB db(book.string(), false);
        if (versionOf(db) > VocabularySchema::version)
            throw BackupError("现在的生词本 " + book.string()
                              + " 由更新的 Tavik 保存，请先升级 Tavik");
        if (!isSound(db)) return false;
        countRows(db);
        return true;
    } catch (const SQLiteDB::Error& error) {
        using Cause = SQLiteDB::Error::Cause;
        if (error.cause == Cause::damaged || error.cause == Cause::other) return false;
        throw;
    }
}

/// Gives the book the rows of the book `from`, and leaves a copy of it as it was in `kept`.
void replaceRows(const fs::path& book, const fs::path& from, const fs::path& kept) {
    SQLiteDB db(book.string(), false);
    db.query("ATTACH ? AS source", {from.string()});
    db.transaction([&] {
        // Nobody else can write now. The copy needs a reader of its own: a transaction cannot copy.
        AsideFile copy(kept);
        copyInto(copy.path(), [&](const std::string& target) {
            SQLiteDB(book.string(), true).query("VACUUM INTO ?", {target});
        });
        checkBook(copy.path());
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

void moveAside(const fs::path& book, const fs::path& kept) {
    for (const char* const ending : bookEndings) {
        const fs::path part = book.string() + ending;
        std::error_code error;
        if (!fs::exists(part, error)) continue;
        fs::rename(part, kept.string() + ending, error);
        if (error)
            throw BackupError("原来的生词本 " + part.string() + " 移不开，请检查目录的权限（"
                              + error.message() + "）");
    }
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
        if (!isSound(db)) throw BackupError(path.string() + " 已损坏，不能使用");
        return countRows(db);
    } catch (const SQLiteDB::Error& failure) {
        throw BackupError(bookFailure(path.string(), failure));
    }
}

BookCounts backUpBook(const VocabularyStore& store, const fs::path& book, const fs::path& target,
                      Overwrite overwrite) {
    for (const char* const ending : bookEndings)
        if (areSame(target, book.string() + ending))
            throw BackupError(target.string() + " 就是生词本自己，请换一个文件名");
    std::error_code ignored;
    if (overwrite == Overwrite::no && fs::exists(target, ignored))
        throw BackupError(target.string() + " 已经存在，请换一个文件名，或者加上 --force 覆盖它");
    const DirectoryLock lock(directoryOf(target));
    AsideFile copy(target);
    copyInto(copy.path(), [&](const std::string& file) { store.copyTo(file); });
    const BookCounts counts = checkBook(copy.path());
    copy.commit();
    return counts;
}

Restored restoreBook(const fs::path& backup, const fs::path& book, Date now) {
    if (areSame(backup, book)) throw BackupError(backup.string() + " 就是现在的生词本，不必恢复");
    checkBook(backup);
    const DirectoryLock lock(directoryOf(book));
    AsideFile copy(book);
    copyInto(copy.path(), [&](const std::string& file) {
        SQLiteDB(backup.string(), true).query("VACUUM INTO ?", {file});
    });
    Restored restored{checkBook(copy.path()), std::nullopt};
    if (!existsAnyPart(book)) {
        copy.commit();
        return restored;
    }
    restored.kept = placeAside(book, now);
    if (isUsable(book)) {
        replaceRows(book, copy.path(), *restored.kept);
    } else {
        moveAside(book, *restored.kept);
        copy.commit();
    }
    return restored;
}

} // namespace tavik
