#include "TavikTerminal/Terminal.h"

#include <sys/ioctl.h>
#include <unistd.h>

#include <cstdlib>

namespace tavik {
namespace {

std::string_view escapeSequence(TextStyle style) {
    switch (style) {
    case TextStyle::bold:
        return "\x1b[1m";
    case TextStyle::accent:
        return "\x1b[1;34m";
    case TextStyle::faint:
        return "\x1b[2m";
    case TextStyle::violet:
        return "\x1b[3;35m";
    case TextStyle::plain:
        break;
    }
    return "";
}

std::string_view environment(const char* name) {
    const char* value = std::getenv(name);
    return value == nullptr ? std::string_view() : value;
}

} // namespace

Terminal Terminal::of(int fileDescriptor) {
    Terminal terminal;
    terminal.isInteractive = isatty(fileDescriptor) == 1;
    terminal.hasColor =
        terminal.isInteractive && environment("NO_COLOR").empty() && environment("TERM") != "dumb";
    winsize size{};
    if (ioctl(fileDescriptor, TIOCGWINSZ, &size) == 0 && size.ws_col > 0)
        terminal.columns = size.ws_col;
    return terminal;
}

std::string styled(const Terminal& terminal, TextStyle style, std::string_view text) {
    const std::string_view start = terminal.hasColor ? escapeSequence(style) : "";
    if (start.empty() || text.empty()) return std::string(text);
    return std::string(start).append(text).append("\x1b[0m");
}

} // namespace tavik
