#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace tavik {

/// How the program stands.
struct ProgramState {
    std::int64_t dueNow = 0;
    std::int64_t totalWords = 0;
    bool hasTray = true;
    bool hasDictionary = true;
    /// Whether the counts are those of the book.
    bool isBookReadable = true;
    /// Why the book could not be read or written of late.
    std::optional<std::string> bookTrouble;
    /// Why settings could not be kept.
    std::optional<std::string> settingsTrouble;
    /// Why the hot key does nothing.
    std::optional<std::string> hotKeyTrouble;
};

/// The book in one line.
std::string bookSummary(const ProgramState& state);

/// What the user should know of and could mend; nothing when all is well.
std::vector<std::string> programNotes(const ProgramState& state);

} // namespace tavik
