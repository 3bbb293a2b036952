#include "Main/RunMode.h"

#include <algorithm>
#include <array>
#include <utility>

namespace tavik {

RunMode runMode(const std::vector<std::string_view>& arguments) {
    // The first of them that is there wins.
    constexpr std::array<std::pair<std::string_view, RunMode>, 5> flags{{
        {"--help", RunMode::help},
        {"-h", RunMode::help},
        {"--version", RunMode::version},
        {"--snapshot", RunMode::snapshot},
        {"--capture-probe", RunMode::captureProbe},
    }};
    for (const auto& [flag, mode] : flags)
        if (std::ranges::find(arguments, flag) != arguments.end()) return mode;
    return RunMode::normal;
}

bool isDiagnostic(RunMode mode) {
    return mode == RunMode::snapshot || mode == RunMode::captureProbe;
}

} // namespace tavik
