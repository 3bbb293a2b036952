#include "Platform/Linux/X11/X11Clipboard.h"

#include "Platform/Linux/X11/ClipboardKeeper.h"
#include "Platform/Linux/X11/CopyKeystroke.h"
#include "Platform/Linux/X11/WindowClients.h"

#include <xcb/xfixes.h>

#include <algorithm>
#include <utility>

namespace tavik {
namespace {

/// How long a late answer to the copy keys is taken back.
constexpr std::chrono::seconds watchTime{5};
/// A program that takes the clipboard again and again wants to have it.
constexpr int mostRestores = 5;

/// The first kind of its events; 0 when it has no notices of owners.
int firstEventOfFixes(xcb_connection_t* connection) {
    const auto* extension = xcb_get_extension_data(connection, &xcb_xfixes_id);
    if (extension == nullptr || extension->present == 0) return 0;
    const auto request = xcb_xfixes_query_version(connection, 5, 0);
    const XCBReply<xcb_xfixes_query_version_reply_t> reply(
        xcb_xfixes_query_version_reply(connection, request, nullptr));
    return reply && reply->major_version >= 1 ? extension->first_event : 0;
}

/// Whether nothing was refused, which is also what one hears of an owner that has ended.
bool isWhole(const SelectionContents& contents) {
    return std::ranges::all_of(contents.targets, [](const SelectionContents::Target& target) {
        return target.data.has_value();
    });
}

} // namespace

X11Clipboard::Session::Session(const OpenDisplay& display, X11Clipboard& clipboard)
    : window(display, [&clipboard](const auto& event) { clipboard.handle(event); }), reader(window),
      server(window), activity(window), firstEvent(firstEventOfFixes(display.connection)) {
    if (firstEvent != 0)
        xcb_xfixes_select_selection_input(display.connection, window.id(),
                                          window.atoms()[SelectionAtoms::clipboard],
                                          XCB_XFIXES_SELECTION_EVENT_MASK_SET_SELECTION_OWNER);
}

X11Clipboard::Session& X11Clipboard::session(const OpenDisplay& display) {
    if (!current) {
        current.emplace(display, *this);
        ++connectionCount;
    }
    return *current;
}

void X11Clipboard::disconnected() {
    watch.reset();
    current.reset();
}

bool X11Clipboard::holds(const Loan& loan) const {
    return current && loan.connection == connectionCount;
}

xcb_window_t X11Clipboard::ownerOfClipboard() const {
    return owner(current->window.atoms()[SelectionAtoms::clipboard]);
}

xcb_window_t X11Clipboard::owner(xcb_atom_t selection) const {
    const auto request = xcb_get_selection_owner(current->window.connection(), selection);
    const XCBReply<xcb_get_selection_owner_reply_t> reply(
        xcb_get_selection_owner_reply(current->window.connection(), request, nullptr));
    return reply ? reply->owner : xcb_window_t{XCB_NONE};
}

/// Takes note of all that has happened by now.
void X11Clipboard::drain() {
    static_cast<void>(current->window.await([](const auto&) { return false; }, Clock::now()));
}

std::optional<X11Clipboard::Loan>
X11Clipboard::lend(const OpenDisplay& display, xcb_window_t application, Clock::time_point until) {
    const Session& here = session(display);
    if (here.firstEvent == 0 || !canPressKeys(display.connection)) return std::nullopt;
    // The last key of the user was the hot key, of which an answer of the server makes sure that we
    // know by now. What the application of the last loan puts there late is still taken back, so
    // that it is not saved for the user's own.
    static_cast<void>(ownerOfClipboard());
    drain();
    current->activity.forgiveLastKey();
    while (Clock::now() < until) {
        const xcb_window_t owning = ownerOfClipboard();
        drain();
        Loan loan{.application = application,
                  .changeCount = changeCount,
                  .copyCount = copyCount,
                  .number = loanCount + 1,
                  .connection = connectionCount};
        if (!saveTo(loan, owning, until)) return std::nullopt;
        const xcb_window_t ownedNow = ownerOfClipboard();
        drain();
        if (changeCount != loan.changeCount) continue;
        if (ownedNow == owning) {
            ++loanCount;
            return loan;
        }
        // It ended while it was read. What it leaves is the user's all the same, if it is whole.
        const auto time = here.window.serverTime(until);
        if (ownedNow != XCB_NONE || !time || !isWhole(*loan.saved)) return std::nullopt;
        own(loan.saved, *time);
    }
    return std::nullopt;
}

/// Saves what the owner offers, if there is one; whether that is whole.
bool X11Clipboard::saveTo(Loan& loan, xcb_window_t owning, Clock::time_point until) {
    if (owning == XCB_NONE) return true;
    loan.saved =
        owning == current->window.id()
            ? current->server.contents()
            : current->reader.contents(current->window.atoms()[SelectionAtoms::clipboard], until);
    return loan.saved != nullptr;
}

bool X11Clipboard::copy(const Loan& loan, Clock::time_point until) {
    if (!holds(loan)) return false;
    const auto isUnchanged = [&] {
        drain();
        return changeCount == loan.changeCount;
    };
    if (!pressCopyKeys(current->window, loan.application, isUnchanged, until)) return false;
    pressedLoan = loan.number;
    watch.reset();
    // Our own keys are no doing of the user's.
    drain();
    current->activity.start();
    return true;
}

bool X11Clipboard::awaitChange(const Loan& loan, Clock::time_point until) {
    if (!holds(loan)) return false;
    drain();
    const auto hasChanged = [&] { return copyCount != loan.copyCount; };
    return hasChanged()
           || current->window.await(
               [&](const xcb_generic_event_t& event) {
                   handle(event);
                   return hasChanged();
               },
               until);
}

std::optional<std::string> X11Clipboard::string(const Loan& loan, Clock::time_point until) {
    if (!holds(loan)) return std::nullopt;
    return current->reader.string(current->window.atoms()[SelectionAtoms::clipboard], until);
}

void X11Clipboard::end(const Loan& loan) {
    if (!holds(loan) || pressedLoan != loan.number) return;
    drain();
    if (changeCount != loan.changeCount && !isOfUser(loan)) restore(loan.saved);
    watch = Watch{loan, Clock::now() + watchTime, mostRestores};
}

/// Whether what lies on the clipboard now was put there by the user, in another program.
bool X11Clipboard::isOfUser(const Loan& loan) const {
    const xcb_window_t owning = ownerOfClipboard();
    return owning != XCB_NONE && current->activity.hasBeen() && !isOfApplication(loan, owning);
}

bool X11Clipboard::isOfApplication(const Loan& loan, xcb_window_t window) const {
    return areOfOneProgram(current->window.connection(), window, loan.application);
}

void X11Clipboard::restore(const SelectionContentsRef& saved) {
    // With the time of the change that is undone the server refuses ours if there was another
    // since.
    if (saved) {
        own(saved, lastChange);
    } else {
        givenUp = lastChange;
        setOwner(XCB_NONE, lastChange);
    }
}

bool X11Clipboard::own(const SelectionContentsRef& contents, xcb_timestamp_t time) {
    setOwner(current->window.id(), time);
    if (ownerOfClipboard() != current->window.id()) return false;
    current->server.setContents(contents, time);
    return true;
}

void X11Clipboard::setOwner(xcb_window_t owner, xcb_timestamp_t time) const {
    xcb_set_selection_owner(current->window.connection(), owner,
                            current->window.atoms()[SelectionAtoms::clipboard], time);
}

std::optional<std::string> X11Clipboard::selectedString(const OpenDisplay& display,
                                                        xcb_window_t application,
                                                        Clock::time_point until) {
    session(display);
    const xcb_window_t owning = owner(XCB_ATOM_PRIMARY);
    if (!areOfOneProgram(display.connection, owning, application)) return std::nullopt;
    return current->reader.string(XCB_ATOM_PRIMARY, until);
}

void X11Clipboard::leaveBehind(Clock::time_point until) {
    if (!current) return;
    drain();
    if (!current->server.contents()) return;
    watch.reset();
    if (!startClipboardKeeper(current->server.contents(), current->window.id(),
                              current->server.ownershipTime()))
        return;
    const auto isTaken = [this](const xcb_generic_event_t& event) {
        handle(event);
        return !current->server.contents() && !current->server.hasTransfers();
    };
    static_cast<void>(current->window.await(isTaken, until));
}

void X11Clipboard::handle(const xcb_generic_event_t& event) {
    if (!current) return;
    const int kind = kindOf(event);
    if (current->firstEvent != 0 && kind == current->firstEvent + XCB_XFIXES_SELECTION_NOTIFY) {
        const auto& change = as<xcb_xfixes_selection_notify_event_t>(event);
        if (change.selection == current->window.atoms()[SelectionAtoms::clipboard])
            noteChange(change.owner, change.selection_timestamp);
    } else if (kind == XCB_SELECTION_CLEAR) {
        if (as<xcb_selection_clear_event_t>(event).owner == current->window.id())
            current->server.setContents(nullptr, XCB_CURRENT_TIME);
    } else {
        current->server.handle(event);
        current->reader.handle(event);
        current->activity.handle(event);
    }
}

void X11Clipboard::noteChange(xcb_window_t newOwner, xcb_timestamp_t time) {
    lastChange = time;
    if (newOwner == current->window.id()) return;
    if (newOwner == XCB_NONE && time == givenUp) return;
    ++changeCount;
    if (newOwner != XCB_NONE) ++copyCount;
    if (!watch) return;
    const bool isLateAnswer = watch->restoresLeft-- > 0 && !current->activity.hasBeen()
                              && isOfApplication(watch->loan, newOwner);
    if (isLateAnswer)
        restore(watch->loan.saved);
    else
        endWatch();
}

void X11Clipboard::endWatch() {
    watch.reset();
    if (current) current->activity.stop();
}

std::optional<DisplayListener::Moment> X11Clipboard::nextMoment() const {
    auto next = current ? current->server.nextMoment() : std::nullopt;
    if (watch && (!next || watch->until < *next)) next = watch->until;
    return next;
}

void X11Clipboard::momentHasCome() {
    if (current) current->server.giveUpStalled();
    if (watch && watch->until <= Clock::now()) endWatch();
}

} // namespace tavik
