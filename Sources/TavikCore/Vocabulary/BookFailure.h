#pragma once

#include "Storage/SQLiteDB.h"

#include <string>

namespace tavik {

/// Why the book at `path` cannot be read or written: a Chinese sentence that says what to do.
std::string bookFailure(const std::string& path, const SQLiteDB::Error& error);

} // namespace tavik
