#include "Base/Preferences.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <utility>

namespace tavik {
namespace {

/// Below and above it, not every integer has a double of its own.
constexpr double exactIntegers = 9007199254740992.0;

std::optional<std::int64_t> asInteger(double number) {
    if (!(std::abs(number) <= exactIntegers) || std::trunc(number) != number) return std::nullopt;
    return static_cast<std::int64_t>(number);
}

bool meansYes(std::string text) {
    constexpr std::array<std::string_view, 3> yes{"yes", "true", "1"};
    std::ranges::transform(text, text.begin(), [](char character) {
        return character >= 'A' && character <= 'Z' ? static_cast<char>(character - 'A' + 'a')
                                                    : character;
    });
    return std::ranges::find(yes, text) != yes.end();
}

} // namespace

const PreferenceValue* Preferences::find(std::string_view key) const {
    const auto found = values.find(key);
    return found == values.end() ? nullptr : &found->second;
}

std::optional<bool> Preferences::boolean(std::string_view key) const {
    const auto* const value = find(key);
    if (value == nullptr) return std::nullopt;
    if (const auto* const boolean = std::get_if<bool>(value)) return *boolean;
    const auto whole = integer(key);
    if (whole && (*whole == 0 || *whole == 1)) return *whole == 1;
    return std::nullopt;
}

std::optional<std::int64_t> Preferences::integer(std::string_view key) const {
    const auto* const value = find(key);
    if (value == nullptr) return std::nullopt;
    if (const auto* const boolean = std::get_if<bool>(value)) return *boolean ? 1 : 0;
    if (const auto* const whole = std::get_if<std::int64_t>(value)) return *whole;
    if (const auto* const number = std::get_if<double>(value)) return asInteger(*number);
    return std::nullopt;
}

std::optional<double> Preferences::number(std::string_view key) const {
    const auto* const value = find(key);
    if (value == nullptr) return std::nullopt;
    if (const auto* const number = std::get_if<double>(value)) return *number;
    const auto whole = integer(key);
    if (!whole || std::abs(static_cast<double>(*whole)) > exactIntegers) return std::nullopt;
    return static_cast<double>(*whole);
}

std::optional<std::string> Preferences::text(std::string_view key) const {
    const auto* const value = find(key);
    const auto* const text = value == nullptr ? nullptr : std::get_if<std::string>(value);
    if (text == nullptr) return std::nullopt;
    return *text;
}

bool Preferences::isSet(std::string_view key) const {
    if (const auto written = text(key)) return meansYes(*written);
    if (const auto amount = number(key)) return *amount != 0;
    return integer(key).has_value();
}

void Preferences::set(std::string_view key, PreferenceValue value) {
    values.insert_or_assign(std::string(key), std::move(value));
}

void Preferences::remove(std::string_view key) {
    const auto found = values.find(key);
    if (found != values.end()) values.erase(found);
}

} // namespace tavik
