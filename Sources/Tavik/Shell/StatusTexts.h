#pragma once

#include "Capture/CaptureError.h"
#include "Settings/HotKeyCombo.h"

#include <cstdint>
#include <string>

namespace tavik {

/// The count as it fits into the icon: "99+" from a hundred on, nothing when no word is due.
std::string statusBadge(std::int64_t dueNow);

std::string statusToolTip(std::int64_t dueNow);

/// Of the menu, while other applications may not be read.
inline constexpr const char* untrustedRow =
    "⚠️ 未授权辅助功能，无法划词 — 点此设置";

/// Of the menu, with the hot key as `display` shows it.
std::string lookupRow(const std::string& hotKey, bool isRegistered);

/// Of the menu, with the number of words due.
std::string reviewRow(std::int64_t dueNow);

/// Of the menu, with the number of words saved.
std::string vocabularyRow(std::int64_t totalWords);

/// The hot key with this desktop's name for it: "⌥D（Alt+D）".
std::string hotKeyName(const HotKeyCombo& combo);

/// Why a word has to be typed.
std::string unreadSelectionNote(const CaptureError& error, const std::string& hotKeyName);

/// What to do about a hot key that the desktop does not give us.
std::string refusedHotKeyNote(const std::string& hotKeyName);

} // namespace tavik
