#include "Storage/SQLiteDB.h"
#include "Support/ChildProcess.h"
#include "Support/TemporaryDirectory.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <filesystem>
#include <thread>

namespace tavik {
namespace {

using test::TemporaryDirectory;
using testing::EndsWith;
using testing::HasSubstr;
using testing::StartsWith;
using Value = SQLiteDB::Value;

class SQLiteDBTest : public testing::Test {
protected:
    std::int64_t count() { return *db.query("SELECT count(*) AS n FROM t").front().int_("n"); }

    TemporaryDirectory directory;
    SQLiteDB db{directory.file("test.sqlite"), false};
};

/// The error that `body` throws; fails the test when there is none.
template<typename Body>
SQLiteDB::Error errorOf(Body body) {
    try {
        body();
    } catch (const SQLiteDB::Error& error) {
        return error;
    }
    ADD_FAILURE() << "nothing was thrown";
    return SQLiteDB::Error::open("none");
}

TEST_F(SQLiteDBTest, openingFailsWhereThereIsNoDirectoryAndReadOnlyWhereThereIsNoFile) {
    const auto noDirectory = errorOf([&] { SQLiteDB(directory.file("none/x.sqlite"), false); });
    EXPECT_EQ(noDirectory.kind, SQLiteDB::Error::Kind::open);
    EXPECT_THAT(noDirectory.what(), StartsWith("SQLite open failed: "));

    const std::string fresh = directory.file("fresh.sqlite");
    EXPECT_EQ(errorOf([&] { SQLiteDB(fresh, true); }).kind, SQLiteDB::Error::Kind::open);
    EXPECT_FALSE(std::filesystem::exists(fresh));
    const SQLiteDB created(fresh, false);
    EXPECT_TRUE(std::filesystem::exists(fresh));
}

TEST_F(SQLiteDBTest, aReadWriteConnectionIsDurableAndEnforcesForeignKeys) {
    EXPECT_EQ(db.query("PRAGMA journal_mode").front().text("journal_mode"), "wal");
    EXPECT_EQ(db.query("PRAGMA foreign_keys").front().int_("foreign_keys"), 1);
    constexpr std::int64_t full = 2;
    EXPECT_EQ(db.query("PRAGMA synchronous").front().int_("synchronous"), full);
}

TEST_F(SQLiteDBTest, aReadOnlyConnectionLeavesTheFileAsItIs) {
    const std::string path = directory.file("plain.sqlite");
    {
        SQLiteDB plain(path, false);
        plain.execute("PRAGMA journal_mode=DELETE; CREATE TABLE t(x)");
    }
    const std::string before = test::readFile(path);
    {
        SQLiteDB reader(path, true);
        EXPECT_TRUE(reader.query("SELECT * FROM t").empty());
        EXPECT_EQ(errorOf([&] { reader.execute("INSERT INTO t VALUES(1)"); }).kind,
                  SQLiteDB::Error::Kind::step);
    }
    EXPECT_EQ(test::readFile(path), before);
}

TEST_F(SQLiteDBTest, valuesOfEveryTypeComeBackUnchanged) {
    db.execute("CREATE TABLE t(x)");
    const std::vector<Value> values{std::numeric_limits<std::int64_t>::min(), 0.1,
                                    std::string("词 ə 🀄"), std::string(), SQLiteDB::Null{}};
    for (const Value& value : values)
        db.query("INSERT INTO t VALUES(?)", {value});
    std::vector<Value> stored;
    for (const auto& row : db.query("SELECT x FROM t ORDER BY rowid"))
        stored.push_back(*row.value("x"));
    EXPECT_EQ(stored, values);
}

TEST_F(SQLiteDBTest, aNumberedParameterServesAllItsPlacesAndTheLaterOfEqualColumnsCounts) {
    const auto rows =
        db.query("SELECT ?1 AS x, ?1 || '!' AS x, x'6162' AS blob", {std::string("hi")});
    ASSERT_EQ(rows.size(), 1U);
    EXPECT_EQ(rows.front().text("x"), "hi!");
    EXPECT_EQ(rows.front().text("blob"), "ab");
}

TEST_F(SQLiteDBTest, accessorsConvertNumbersAndRefuseTheRest) {
    const auto rows =
        db.query("SELECT 3.9 AS real, -3.9 AS negative, 7 AS whole, '7' AS text, NULL AS n");
    const auto& row = rows.front();
    EXPECT_EQ(row.int_("real"), 3);
    EXPECT_EQ(row.int_("negative"), -3);
    EXPECT_EQ(row.date("real"), dateFromSeconds(3.9));
    EXPECT_EQ(row.double_("whole"), 7.0);
    for (const char* const column : {"text", "n", "missing"}) {
        EXPECT_EQ(row.int_(column), std::nullopt);
        EXPECT_EQ(row.date(column), std::nullopt);
    }
    EXPECT_EQ(row.text("whole"), std::nullopt);
    EXPECT_DEATH(db.query("SELECT 9.3e18 AS x").front().int_("x"), "no 64-bit integer");
}

TEST_F(SQLiteDBTest, errorsSayWhatFailedAndLeaveTheConnectionUsable) {
    db.execute("CREATE TABLE t(x UNIQUE)");
    const auto syntax = errorOf([&] { db.query("SELEC 1"); });
    EXPECT_EQ(syntax.kind, SQLiteDB::Error::Kind::prepare);
    EXPECT_THAT(syntax.what(), StartsWith("SQLite prepare failed: "));
    EXPECT_THAT(syntax.what(), EndsWith(" — SELEC 1"));

    EXPECT_THAT(errorOf([&] { db.execute("SELEC 1"); }).what(), StartsWith("SQLite step failed: "));

    db.query("INSERT INTO t VALUES(1)");
    const auto duplicate = errorOf([&] { db.query("INSERT INTO t VALUES(1)"); });
    EXPECT_EQ(duplicate.kind, SQLiteDB::Error::Kind::step);
    EXPECT_THAT(duplicate.message, HasSubstr("UNIQUE"));
    EXPECT_EQ(count(), 1);
}

TEST_F(SQLiteDBTest, aBodyThatThrowsLeavesNoTrace) {
    db.execute("CREATE TABLE t(x)");
    const auto failing = [&] {
        db.transaction([&] {
            db.execute("INSERT INTO t VALUES(1)");
            throw std::runtime_error("stop");
        });
    };
    EXPECT_THROW(failing(), std::runtime_error);
    EXPECT_EQ(count(), 0);

    const auto id = db.transaction([&] {
        db.execute("INSERT INTO t VALUES(2)");
        return db.lastInsertRowID();
    });
    EXPECT_EQ(id, 1);
    EXPECT_EQ(count(), 1);
}

TEST_F(SQLiteDBTest, theFirstErrorOfATransactionIsTheOneThatIsReported) {
    db.execute("CREATE TABLE t(x)");
    const auto bodyEndsTheTransactionItself = [&] {
        db.transaction([&] {
            db.execute("ROLLBACK");
            db.execute("INSERT INTO missing VALUES(1)");
        });
    };
    EXPECT_THAT(errorOf(bodyEndsTheTransactionItself).what(), HasSubstr("no such table: missing"));

    db.execute("CREATE TABLE child(t REFERENCES parent(id) DEFERRABLE INITIALLY DEFERRED);"
               "CREATE TABLE parent(id INTEGER PRIMARY KEY)");
    const auto commitFails = [&] {
        db.transaction([&] {
            db.execute("INSERT INTO t VALUES(1)");
            db.execute("INSERT INTO child VALUES(42)");
        });
    };
    EXPECT_THAT(errorOf(commitFails).what(), HasSubstr("FOREIGN KEY"));
    EXPECT_EQ(count(), 0);

    db.transaction([&] {
        EXPECT_THROW(db.transaction([] {}), SQLiteDB::Error);
        db.execute("INSERT INTO t VALUES(1)");
    });
    EXPECT_EQ(count(), 1);
}

TEST_F(SQLiteDBTest, noMoreRowsAreReadThanWanted) {
    db.execute("CREATE TABLE t(x); INSERT INTO t VALUES('[1]'), ('[2]'), ('no JSON')");
    const char* const sql = "SELECT json_extract(x, '$[0]') AS n FROM t";
    EXPECT_EQ(db.query(sql, {}, 2).back().int_("n"), 2);
    EXPECT_EQ(db.query(sql, {}, 0).size(), 0U);
    EXPECT_EQ(errorOf([&] { db.query(sql); }).kind, SQLiteDB::Error::Kind::step);
    db.transaction([&] { db.execute("DELETE FROM t"); });
}

TEST_F(SQLiteDBTest, transactionsOfTwoThreadsNeverInterleave) {
    db.execute("CREATE TABLE t(writer INTEGER)");
    constexpr int transactions = 50;
    const auto write = [&](std::int64_t writer) {
        for (int i = 0; i < transactions; ++i)
            db.transaction([&] {
                db.query("INSERT INTO t VALUES(?)", {writer});
                const auto first = db.lastInsertRowID();
                db.query("INSERT INTO t VALUES(?)", {writer});
                EXPECT_EQ(db.lastInsertRowID(), first + 1);
            });
    };
    std::thread other(write, 1);
    write(2);
    other.join();
    const auto torn = db.query("SELECT count(*) AS n FROM t a JOIN t b ON b.rowid = a.rowid + 1 "
                               "WHERE a.rowid % 2 = 1 AND a.writer <> b.writer");
    EXPECT_EQ(torn.front().int_("n"), 0);
    EXPECT_EQ(count(), 4 * transactions);
}

TEST_F(SQLiteDBTest, aFullDiskFailsTheTransactionAndKeepsWhatWasThere) {
    db.execute("CREATE TABLE t(x); INSERT INTO t VALUES('old')");
    const auto answer = test::inChild({.maxFileSize = 200000}, [&]() -> std::string {
        SQLiteDB full(directory.file("test.sqlite"), false);
        try {
            full.transaction([&] {
                for (int i = 0; i < 100; ++i)
                    full.query("INSERT INTO t VALUES(?)", {std::string(10000, 'x')});
            });
        } catch (const SQLiteDB::Error& error) {
            const auto rows = full.query("SELECT count(*) AS n FROM t");
            return "failed, " + std::to_string(*rows.front().int_("n")) + " left";
        }
        return "succeeded";
    });
    EXPECT_EQ(answer, "failed, 1 left");
    EXPECT_EQ(db.query("SELECT x FROM t").front().text("x"), "old");
}

TEST_F(SQLiteDBTest, aFileOfAnotherUserIsAnOpenError) {
    const std::string path = directory.file("private.sqlite");
    test::writeFile(path, "");
    std::filesystem::permissions(path, std::filesystem::perms::none);
    const auto answer = test::inChild({.unprivileged = true}, [&]() -> std::string {
        SQLiteDB reader(path, true);
        return "opened";
    });
    EXPECT_THAT(answer, StartsWith("SQLite open failed: "));
}

} // namespace
} // namespace tavik
