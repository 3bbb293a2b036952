#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

struct sqlite3;

namespace tavik {

/// An encounter with its columns as SQLite gives them; what is NULL reads as empty.
struct BareEncounter {
    std::int64_t id = 0;
    std::int64_t wordID = 0;
    std::string selection;
    std::string sentence;
    std::string contextMeaning;
    std::string appName;
    std::string bundleID;
    std::string url;
    double seenAt = 0;
};

/// A row of the list with its columns as SQLite gives them; what is NULL reads as 0.
struct BareItem {
    std::int64_t id = 0;
    std::string lemma;
    std::string headword;
    std::string phonetic;
    std::string brief;
    double createdAt = 0;
    std::int64_t wordID = 0;
    std::string state;
    double due = 0;
    double stability = 0;
    double difficulty = 0;
    std::int64_t reps = 0;
    std::int64_t lapses = 0;
    double lastReview = 0;
    std::int64_t encounterCount = 0;
    BareEncounter latest;
};

/// A vocabulary book read straight through SQLite's interface, by the statements of the store: what
/// reading it costs at the least. Not for several threads.
class BareBook {
public:
    /// Throws a runtime error when the file cannot be opened.
    explicit BareBook(const std::string& path);

    /// All words, newest first. For each of them the statement for its encounters is prepared anew
    /// and all its rows are read, while the statement for the words still runs.
    std::vector<BareItem> items() const;

private:
    std::unique_ptr<sqlite3, int (*)(sqlite3*)> handle;
};

} // namespace tavik
