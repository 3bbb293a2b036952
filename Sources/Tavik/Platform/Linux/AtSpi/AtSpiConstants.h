#pragma once

#include <cstdint>

/// The numbers and names of AT-SPI that are used here, as its interface files define them.
namespace tavik::atspi {

enum Role : std::uint32_t {
    roleDialog = 16,
    roleFrame = 23,
    roleLabel = 29,
    roleListItem = 32,
    roleMenu = 33,
    roleMenuBar = 34,
    rolePasswordText = 40,
    rolePopupMenu = 41,
    roleTerminal = 60,
    roleText = 61,
    roleWindow = 69,
    roleApplication = 75,
    roleEntry = 79,
    roleDocumentFrame = 82,
    roleLink = 88,
    roleDocumentSpreadsheet = 92,
    roleDocumentWeb = 95,
    roleDocumentEmail = 96,
    roleStatic = 116,
};

enum State : std::uint32_t { stateActive = 1, stateFocused = 12, stateShowing = 25 };

/// What stands in a text for an object embedded there.
constexpr char16_t embeddedObject = u'\uFFFC';

} // namespace tavik::atspi
