#pragma once

#include <termios.h>

#include <deque>
#include <optional>
#include <string>

namespace tavik {

/// Reads single keys from an open descriptor: unechoed and without waiting for Enter where that is
/// a terminal, byte by byte where it is not. While it lives, signals that would end the program end
/// the input instead, so that the terminal is always left as it was found. For the main thread of a
/// program with one thread.
class KeyReader {
public:
    explicit KeyReader(int descriptor);
    ~KeyReader();
    KeyReader(const KeyReader&) = delete;
    KeyReader& operator=(const KeyReader&) = delete;

    bool isTerminal() const { return original.has_value(); }

    /// Waits for the next key; nothing at the end of input and after Ctrl+C or Ctrl+D. Keys that
    /// send more than one character, such as the arrows, are passed over.
    std::optional<char> next();

private:
    /// Reads what is there; false at the end.
    bool readMore();
    /// Waits for input up to so many milliseconds, or for ever, and appends it to `typed`; false at
    /// the end, after a signal and when nothing came.
    bool readInto(std::string& typed, int milliseconds);

    int descriptor;
    std::optional<termios> original;
    int signals;
    std::deque<char> pending;
};

} // namespace tavik
