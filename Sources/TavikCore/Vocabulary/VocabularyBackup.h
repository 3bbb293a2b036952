#pragma once

#include "Base/Date.h"

#include <cstdint>
#include <filesystem>
#include <optional>
#include <stdexcept>

namespace tavik {

class VocabularyStore;

/// A book that cannot be backed up or restored; `what()` is a Chinese sentence that says what to
/// do. What was there before is untouched.
class BackupError : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

struct BookCounts {
    std::int64_t words = 0;
    std::int64_t encounters = 0;
    std::int64_t reviews = 0;

    bool operator==(const BookCounts&) const = default;
};

/// Reads all of the book at `path` and says what is in it. Throws `BackupError` unless it is whole
/// and of a version this program knows.
BookCounts checkBook(const std::filesystem::path& path);

/// Throws `BackupError` when `target` is the book itself or a part of it, however it is named.
void requireOutsideBook(const std::filesystem::path& target, const std::filesystem::path& book);

enum class Overwrite { no, yes };

/// Writes the book, as it is at one moment, into `target`, while others may go on writing it. The
/// copy is checked and on the disk before it takes its place. Throws `BackupError` or `FileError`.
BookCounts backUpBook(const VocabularyStore& store, const std::filesystem::path& book,
                      const std::filesystem::path& target, Overwrite overwrite);

struct Restored {
    BookCounts counts;
    /// Where the book is that was there before.
    std::optional<std::filesystem::path> kept;
};

/// Makes the checked `backup` the content of the book at `book`, and keeps the present book aside
/// under a name with `now` in it.
///
/// 1. The backup is checked, and its rows are copied into a new book beside the present one.
/// 2. A present book in good order is copied aside and its rows replaced, both in one transaction:
///    other programs may have it open, and see the new words at once.
/// 3. One that is damaged is moved aside with its log, and the new book takes its place. No
///    program, this one included, may have it open then.
///
/// Throws `BackupError`, `FileError` or, when the present book cannot be written,
/// `SQLiteDB::Error`; the present book is then as it was.
Restored restoreBook(const std::filesystem::path& backup, const std::filesystem::path& book,
                     Date now);

} // namespace tavik
