#include "TavikTerminal/SecretPrompt.h"

#include "TavikTerminal/KeyReader.h"

#include <fcntl.h>
#include <unistd.h>

namespace tavik {
namespace {

constexpr char backspace = '\b';
constexpr char del = 127;

/// The terminal, whatever standard input and output are; closed at the end of the scope.
class OwnTerminal {
public:
    OwnTerminal() : descriptor(open("/dev/tty", O_RDWR | O_CLOEXEC | O_NOCTTY)) {}

    ~OwnTerminal() {
        if (isOpen()) close(descriptor);
    }

    OwnTerminal(const OwnTerminal&) = delete;
    OwnTerminal& operator=(const OwnTerminal&) = delete;

    bool isOpen() const { return descriptor >= 0; }

    /// Whether it could be printed.
    bool print(std::string_view text) const {
        return write(descriptor, text.data(), text.size()) == static_cast<ssize_t>(text.size());
    }

    int number() const { return descriptor; }

private:
    int descriptor;
};

std::optional<std::string> readLine(KeyReader& keys) {
    std::string line;
    while (const auto key = keys.next()) {
        if (*key == '\n') return line;
        if (*key != backspace && *key != del)
            line += *key;
        else if (!line.empty())
            line.pop_back();
    }
    return std::nullopt;
}

} // namespace

bool canAsk() {
    return OwnTerminal().isOpen();
}

std::optional<std::string> askSecret(std::string_view question) {
    const OwnTerminal terminal;
    if (!terminal.isOpen()) return std::nullopt;
    KeyReader keys(terminal.number());
    if (!terminal.print(question)) return std::nullopt;
    auto answer = readLine(keys);
    static_cast<void>(terminal.print("\n"));
    return answer;
}

} // namespace tavik
