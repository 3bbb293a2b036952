#include "Settings/HotKeyCombo.h"

#include "Base/BoundedJSON.h"

#include <nlohmann/json.hpp>

#include <limits>

namespace tavik {
namespace {

constexpr const char* keyCodeKey = "keyCode";
constexpr const char* modifiersKey = "carbonModifiers";

std::optional<std::uint32_t> number(const nlohmann::json& object, const char* key) {
    const auto found = object.find(key);
    if (found == object.end() || !found->is_number_unsigned()) return std::nullopt;
    const auto value = found->get<std::uint64_t>();
    if (value > std::numeric_limits<std::uint32_t>::max()) return std::nullopt;
    return static_cast<std::uint32_t>(value);
}

} // namespace

std::string hotKeyJSON(const HotKeyCombo& combo) {
    nlohmann::ordered_json object;
    object[keyCodeKey] = combo.keyCode;
    object[modifiersKey] = combo.carbonModifiers;
    return object.dump();
}

std::optional<HotKeyCombo> hotKeyFromJSON(std::string_view text) {
    const auto object = parseBoundedJSON(text);
    if (!object || !object->is_object()) return std::nullopt;
    const auto keyCode = number(*object, keyCodeKey);
    const auto modifiers = number(*object, modifiersKey);
    if (!keyCode || !modifiers) return std::nullopt;
    return HotKeyCombo{*keyCode, *modifiers};
}

} // namespace tavik
