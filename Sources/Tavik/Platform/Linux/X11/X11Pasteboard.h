#pragma once

#include "Ports/Pasteboard.h"

#include <memory>

namespace tavik {

/// CLIPBOARD and PRIMARY of the X server that $DISPLAY names. What it has put back on CLIPBOARD
/// stays there until somebody copies something, also after the end of the program.
class X11Pasteboard final : public Pasteboard {
public:
    X11Pasteboard();
    ~X11Pasteboard() override;
    X11Pasteboard(const X11Pasteboard&) = delete;
    X11Pasteboard& operator=(const X11Pasteboard&) = delete;

    std::unique_ptr<PasteboardLoan> lend(const FrontApplication& application) override;
    std::optional<std::string> selectedString(const FrontApplication& application) override;

private:
    class Counter;
    class Loan;

    std::shared_ptr<Counter> counter;
};

} // namespace tavik
