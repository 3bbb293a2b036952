#include "Platform/Linux/DBus/ShortcutTrigger.h"

#include "Platform/Linux/Keys/ClassicKeys.h"

#include <array>
#include <string_view>
#include <utility>

namespace tavik {
namespace {

constexpr auto prefixes = std::to_array<std::pair<std::uint32_t, std::string_view>>({
    {0x1000, "CTRL+"},
    {0x800, "ALT+"},
    {0x200, "SHIFT+"},
    {0x100, "LOGO+"},
});

} // namespace

std::optional<std::string> shortcutTrigger(std::uint32_t keyCode, std::uint32_t modifiers) {
    const ClassicKey* const key = classicKey(keyCode);
    if (!key) return std::nullopt;
    std::string trigger;
    for (const auto& [mask, prefix] : prefixes)
        if ((modifiers & mask) != 0) trigger += prefix;
    return trigger += key->keysymName;
}

} // namespace tavik
