#pragma once

#include "Ports/Accessibility.h"
#include "Ports/Pasteboard.h"
#include "Ports/Processes.h"
#include "Ports/Workspace.h"

#include <optional>
#include <string>

namespace tavik {

/// Which way a text comes from an application that accessibility does not read.
enum class ClipboardWay {
    /// By a copy made for the user, and undone.
    copy,
    /// From what the desktop keeps of the last selection: in a terminal the keys of a copy would
    /// stop the program that runs there.
    selection,
    /// Not at all: a password, or a program that would act on the keys only when it goes on.
    none,
};

/// `focusedRole` is that of the focused element, as far as it is known.
ClipboardWay clipboardWay(const FrontApplication& application,
                          std::optional<AccessibleRole> focusedRole, Processes& processes);

/// What is selected in `application`, nothing when that is nothing or blank. The clipboard is then
/// as it was. `isSelectionKnown` says that accessibility knows of a selection there, though not of
/// its text, so that the last one that the desktop keeps is no old one.
std::optional<std::string> fromClipboard(const FrontApplication& application, ClipboardWay way,
                                         bool isSelectionKnown, Pasteboard& pasteboard);

} // namespace tavik
