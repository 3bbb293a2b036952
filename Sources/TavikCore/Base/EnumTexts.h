#pragma once

#include <algorithm>
#include <array>
#include <cstddef>
#include <optional>
#include <string_view>

namespace tavik {

/// The texts of one case of an enumeration: the one it is stored under, and its name for people.
template<typename Enum>
struct EnumTexts {
    Enum value;
    std::string_view rawValue;
    std::string_view label;
};

/// All cases of an enumeration whose values count from 0, in their order.
template<typename Enum, std::size_t count>
using EnumTable = std::array<EnumTexts<Enum>, count>;

template<typename Enum, std::size_t count>
const EnumTexts<Enum>& textsOf(const EnumTable<Enum, count>& table, Enum value) {
    return table.at(static_cast<std::size_t>(value));
}

template<typename Enum, std::size_t count>
std::optional<Enum> caseWithRawValue(const EnumTable<Enum, count>& table, std::string_view text) {
    const auto* const found = std::ranges::find(table, text, &EnumTexts<Enum>::rawValue);
    if (found == table.end()) return std::nullopt;
    return found->value;
}

} // namespace tavik
