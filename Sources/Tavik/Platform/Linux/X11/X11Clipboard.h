#pragma once

#include "Platform/Linux/X11/DisplayThread.h"
#include "Platform/Linux/X11/SelectionReader.h"
#include "Platform/Linux/X11/SelectionServer.h"
#include "Platform/Linux/X11/SelectionWindow.h"
#include "Platform/Linux/X11/UserActivity.h"

#include <cstdint>
#include <optional>
#include <string>

namespace tavik {

/// CLIPBOARD and PRIMARY as one connection sees them, and CLIPBOARD's owner where we put back what
/// was there. All but the constructor is for the display's thread; whatever waits ends at `until`.
class X11Clipboard final : public DisplayListener {
public:
    using Clock = SelectionWindow::Clock;

    /// One loan: the program for which it is, what lay there, and how often that had changed.
    struct Loan {
        xcb_window_t application = XCB_NONE;
        /// Null when nobody owned it.
        SelectionContentsRef saved = nullptr;
        std::int64_t changeCount = 0;
        std::int64_t copyCount = 0;
        std::int64_t number = 0;
        /// Of the connection on which it was made.
        std::int64_t connection = 0;
    };

    std::optional<Loan> lend(const OpenDisplay& display, xcb_window_t application,
                             Clock::time_point until);
    bool copy(const Loan& loan, Clock::time_point until);
    bool awaitChange(const Loan& loan, Clock::time_point until);
    std::optional<std::string> string(const Loan& loan, Clock::time_point until);
    /// Puts back what lay there if it was taken, and goes on to do so for a while.
    void end(const Loan& loan);

    std::optional<std::string> selectedString(const OpenDisplay& display, xcb_window_t application,
                                              Clock::time_point until);

    /// Leaves what it owns to a process that has nothing else to do, so that it outlives this one.
    void leaveBehind(Clock::time_point until);

    void handle(const xcb_generic_event_t& event) override;
    void disconnected() override;
    std::optional<Moment> nextMoment() const override;
    void momentHasCome() override;

private:
    /// What there is once there is a connection.
    struct Session {
        explicit Session(const OpenDisplay& display, X11Clipboard& clipboard);

        SelectionWindow window;
        SelectionReader reader;
        SelectionServer server;
        UserActivity activity;
        /// Of the notices of new owners; 0 when the server sends none.
        int firstEvent = 0;
    };

    /// While what the application puts there is taken back.
    struct Watch {
        Loan loan;
        Clock::time_point until;
        int restoresLeft;
    };

    Session& session(const OpenDisplay& display);
    bool holds(const Loan& loan) const;
    xcb_window_t ownerOfClipboard() const;
    xcb_window_t owner(xcb_atom_t selection) const;
    void setOwner(xcb_window_t owner, xcb_timestamp_t time) const;
    bool own(const SelectionContentsRef& contents, xcb_timestamp_t time);
    bool isOfUser(const Loan& loan) const;
    bool isOfApplication(const Loan& loan, xcb_window_t window) const;
    void drain();
    void noteChange(xcb_window_t newOwner, xcb_timestamp_t time);
    bool saveTo(Loan& loan, xcb_window_t owning, Clock::time_point until);
    void restore(const SelectionContentsRef& saved);
    void endWatch();

    std::optional<Session> current;
    std::int64_t connectionCount = 0;
    /// How often another program has changed CLIPBOARD, how often by taking it, and since when its
    /// owner has had it by the server's clock.
    std::int64_t changeCount = 0;
    std::int64_t copyCount = 0;
    xcb_timestamp_t lastChange = XCB_CURRENT_TIME;
    /// When we gave it up, of which the server notifies us, too.
    xcb_timestamp_t givenUp = XCB_CURRENT_TIME;
    std::int64_t loanCount = 0;
    /// The number of the last loan for which keys were pressed.
    std::int64_t pressedLoan = 0;
    std::optional<Watch> watch;
};

} // namespace tavik
