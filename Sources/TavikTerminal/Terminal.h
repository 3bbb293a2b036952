#pragma once

#include <cstddef>
#include <string>
#include <string_view>

namespace tavik {

/// What the terminal behind an output stream can do.
struct Terminal {
    /// Whether a person is looking: false for a file or a pipe.
    bool isInteractive = false;
    /// Whether escape sequences for colour are welcome.
    bool hasColor = false;
    std::size_t columns = 80;

    /// The terminal of an open file descriptor, honouring NO_COLOR and TERM=dumb.
    static Terminal of(int fileDescriptor);
};

enum class TextStyle { plain, bold, accent, faint, violet };

/// `text` in a style where the terminal has colour, else as it is.
std::string styled(const Terminal& terminal, TextStyle style, std::string_view text);

} // namespace tavik
