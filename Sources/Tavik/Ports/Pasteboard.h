#pragma once

#include "Ports/Workspace.h"

#include <chrono>
#include <memory>
#include <optional>
#include <string>

namespace tavik {

/// The clipboard, lent for one copy. Whatever comes to lie on it meanwhile is replaced, when the
/// loan ends, by all that lay there before; and so is what the application puts there late, for
/// five seconds more, unless the user does something that may be a copy of his own.
class PasteboardLoan {
public:
    PasteboardLoan() = default;
    PasteboardLoan(const PasteboardLoan&) = delete;
    PasteboardLoan& operator=(const PasteboardLoan&) = delete;
    virtual ~PasteboardLoan() = default;

    /// Presses the keys of "Copy" for the user. Whether they were pressed: never for an application
    /// that is not in front any more or does not respond. Waits for that half a second at most.
    virtual bool copy() = 0;

    /// Waits until something was put on the clipboard since it was lent, and returns whether that
    /// was so.
    virtual bool awaitChange(std::chrono::milliseconds limit) = 0;

    /// The text that lies there now, in UTF-8. Waits for its owner half a second at most.
    virtual std::optional<std::string> string() = 0;
};

/// Where applications leave what the user copies or selects. Safe from any thread but the main one,
/// as everything here waits for other programs.
class Pasteboard {
public:
    virtual ~Pasteboard() = default;

    /// Lends the clipboard for a copy in `application`. Null when what lies there could not be
    /// saved whole within a second, and while it is lent to somebody else for longer than that.
    virtual std::unique_ptr<PasteboardLoan> lend(const FrontApplication& application) = 0;

    /// The text that the user selected last, if that was in `application`: some desktops keep it at
    /// hand. An application may still offer what is not selected any more. In UTF-8; waits for its
    /// owner half a second at most.
    virtual std::optional<std::string> selectedString(const FrontApplication& application) = 0;
};

} // namespace tavik
