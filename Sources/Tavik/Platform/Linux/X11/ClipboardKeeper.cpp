#include "Platform/Linux/X11/ClipboardKeeper.h"

#include "Platform/Linux/X11/SelectionServer.h"
#include "Platform/Linux/X11/SelectionWindow.h"

#include <fcntl.h>
#include <sys/prctl.h>
#include <unistd.h>

#include <chrono>
#include <csignal>
#include <filesystem>
#include <system_error>

namespace tavik {
namespace {

using Clock = SelectionWindow::Clock;

/// Nobody must wait for an end of this process: not a shell for its output, not the next start of
/// the program for a lock, not the end of the session for its signals.
void detach() {
    setsid();
    std::error_code ignored;
    std::filesystem::current_path("/", ignored);
    const int nowhere = open("/dev/null", O_RDWR | O_CLOEXEC); // NOLINT: a call of C
    for (const int standard : {STDIN_FILENO, STDOUT_FILENO, STDERR_FILENO})
        dup2(nowhere, standard);
    close_range(STDERR_FILENO + 1, ~0U, 0);
    for (const int number : {SIGHUP, SIGINT, SIGTERM})
        static_cast<void>(std::signal(number, SIG_DFL));
    sigset_t none{};
    sigemptyset(&none);
    pthread_sigmask(SIG_SETMASK, &none, nullptr);
    prctl(PR_SET_NAME, "tavik-clipboard");
}

xcb_window_t ownerOfClipboard(const SelectionWindow& window) {
    const auto request =
        xcb_get_selection_owner(window.connection(), window.atoms()[SelectionAtoms::clipboard]);
    const XCBReply<xcb_get_selection_owner_reply_t> reply(
        xcb_get_selection_owner_reply(window.connection(), request, nullptr));
    return reply ? reply->owner : xcb_window_t{XCB_NONE};
}

void keep(const SelectionContentsRef& contents, xcb_window_t owner, xcb_timestamp_t time) {
    int screen = 0;
    const XCBConnection connection(xcb_connect(nullptr, &screen));
    if (xcb_connection_has_error(connection.get()) != 0) return;
    const SelectionWindow window({connection.get(), rootOf(connection.get(), screen)},
                                 [](const xcb_generic_event_t&) {});
    // The process that owned it may be gone by now.
    const xcb_window_t owning = ownerOfClipboard(window);
    if (owning != owner && owning != XCB_NONE) return;
    xcb_set_selection_owner(connection.get(), window.id(),
                            window.atoms()[SelectionAtoms::clipboard], time);
    if (ownerOfClipboard(window) != window.id()) return;
    SelectionServer server(window);
    server.setContents(contents, time);
    while ((server.contents() || server.hasTransfers())
           && xcb_connection_has_error(connection.get()) == 0) {
        const auto isTaken = [&](const xcb_generic_event_t& event) {
            server.handle(event);
            if (kindOf(event) == XCB_SELECTION_CLEAR) server.setContents(nullptr, time);
            return !server.contents() && !server.hasTransfers();
        };
        constexpr std::chrono::minutes anyTime{1};
        static_cast<void>(
            window.await(isTaken, server.nextMoment().value_or(Clock::now() + anyTime)));
        server.giveUpStalled();
    }
}

} // namespace

bool startClipboardKeeper(const SelectionContentsRef& contents, xcb_window_t owner,
                          xcb_timestamp_t time) {
    const pid_t child = fork();
    if (child != 0) return child > 0;
    detach();
    keep(contents, owner, time);
    _exit(0);
}

} // namespace tavik
