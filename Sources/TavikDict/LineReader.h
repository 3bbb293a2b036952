#pragma once

#include <cstdint>
#include <filesystem>
#include <fstream>
#include <string>

namespace tavik {

/// Reads a text file line by line, with LF or CR LF ends and an optional byte order mark.
class LineReader {
public:
    /// Throws `BuildError` when the file cannot be opened.
    explicit LineReader(const std::filesystem::path& path);

    /// Reads the next line into `line()`; false at the end. Throws `BuildError` on a read error.
    bool next();

    const std::string& line() const { return current; }

    /// The number of the line read last, from 1.
    std::int64_t number() const { return lineNumber; }

    /// Whether the line is valid UTF-8 without control characters other than the tab.
    bool isCleanText() const;

private:
    std::filesystem::path path;
    std::ifstream file;
    std::string current;
    std::int64_t lineNumber = 0;
};

} // namespace tavik
