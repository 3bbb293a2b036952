#include "Capture/ClipboardReader.h"

#include "Capture/Attribute.h"
#include "Capture/CopyKeys.h"
#include "Text/CharacterClasses.h"
#include "Text/Unicode.h"

#include <chrono>
#include <utility>

namespace tavik {
namespace {

/// For the application to put its answer on the clipboard: 15 looks, 20 ms apart.
constexpr std::chrono::milliseconds answerLimit{300};

std::optional<std::string> unlessBlank(std::optional<std::string> text) {
    return text && !trimmed(*text, isWhiteSpace).empty() ? std::move(text) : std::nullopt;
}

std::optional<std::string> copied(const FrontApplication& application, Pasteboard& pasteboard) {
    const auto loan = attribute(&pasteboard, &Pasteboard::lend, application);
    if (!attribute(loan, &PasteboardLoan::copy)) return std::nullopt;
    if (!attribute(loan, &PasteboardLoan::awaitChange, answerLimit)) return std::nullopt;
    return unlessBlank(attribute(loan, &PasteboardLoan::string));
}

} // namespace

ClipboardWay clipboardWay(const FrontApplication& application,
                          std::optional<AccessibleRole> focusedRole, Processes& processes) {
    if (focusedRole == AccessibleRole::passwordField) return ClipboardWay::none;
    const std::int64_t process = application.processIdentifier;
    if (processes.isStopped(process)) return ClipboardWay::none;
    if (focusedRole == AccessibleRole::terminal
        || mayActOnCopyKeys(application.bundleIdentifier.value_or(""))
        || processes.mayHoldTerminal(process))
        return ClipboardWay::selection;
    return ClipboardWay::copy;
}

std::optional<std::string> fromClipboard(const FrontApplication& application, ClipboardWay way,
                                         bool isSelectionKnown, Pasteboard& pasteboard) {
    if (way == ClipboardWay::none) return std::nullopt;
    if (way == ClipboardWay::selection || isSelectionKnown) {
        auto selected =
            unlessBlank(attribute(&pasteboard, &Pasteboard::selectedString, application));
        if (selected || way == ClipboardWay::selection) return selected;
    }
    return copied(application, pasteboard);
}

} // namespace tavik
