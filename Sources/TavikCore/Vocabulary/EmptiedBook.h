#pragma once

#include "Base/Date.h"

#include <filesystem>
#include <stdexcept>
#include <string>

namespace tavik {

/// Whether the book's file is empty or missing while its "-wal" still holds data. SQLite would
/// delete that data on opening, and with it the words saved last.
bool isEmptiedBook(const std::string& path);

/// The book at `path` is such a one and must not be opened. `what()` is a Chinese sentence that
/// tells the user what to do.
class EmptiedBookError : public std::runtime_error {
public:
    explicit EmptiedBookError(const std::string& path);
};

/// Moves what is left of an emptied book to a name beside it, with `now` in it, so that a new book
/// can be opened in its place; where it was moved to. Throws `FileError`, also when another program
/// has the book open.
std::filesystem::path setEmptiedBookAside(const std::string& path, Date now);

} // namespace tavik
