#pragma once

#include <functional>
#include <string>
#include <vector>

namespace tavik {

/// What the user can ask the program for, wherever it is shown.
struct MenuRow {
    std::string title;
    /// The letter that chooses the row, with the control key; 0 for none.
    char key = 0;
    /// Whether a line sets it apart from the row before.
    bool beginsGroup = false;
    std::function<void()> action;
};

/// Whether two rows cannot be told apart by who sees them.
inline bool looksLike(const MenuRow& one, const MenuRow& other) {
    return one.title == other.title && one.key == other.key && one.beginsGroup == other.beginsGroup;
}

/// The rows as they are at the moment of the call.
using MenuRows = std::function<std::vector<MenuRow>()>;

} // namespace tavik
