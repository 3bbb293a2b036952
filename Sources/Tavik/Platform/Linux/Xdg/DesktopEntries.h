#pragma once

#include <chrono>
#include <map>
#include <mutex>
#include <optional>
#include <string>
#include <utility>

namespace tavik {

/// The desktop entries of the programs that are installed. Any thread may call.
class DesktopEntries {
public:
    /// How long a program without an entry is not looked for again.
    explicit DesktopEntries(std::chrono::milliseconds patience = std::chrono::minutes(1));

    /// The name, in the user's language, in the entry of a program: of the identifier, or of the
    /// class of its windows. Nothing when it has none. Reads files when it is first asked for a
    /// program, all entries at worst.
    std::optional<std::string> name(const std::string& identifier, const std::string& windowClass);

private:
    using Clock = std::chrono::steady_clock;
    using Program = std::pair<std::string, std::string>;

    struct Answer {
        std::optional<std::string> name;
        Clock::time_point since;
    };

    std::chrono::milliseconds patience;
    std::mutex lock;
    std::map<Program, Answer> known;
};

} // namespace tavik
