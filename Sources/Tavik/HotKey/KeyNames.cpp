#include "HotKey/KeyNames.h"

#include <algorithm>
#include <array>
#include <string_view>

namespace tavik {
namespace {

struct Key {
    std::uint32_t code;
    std::string_view name;
};

constexpr auto keys = std::to_array<Key>({
    {0, "A"},   {11, "B"},     {8, "C"},    {2, "D"},    {14, "E"},  {3, "F"},    {5, "G"},
    {4, "H"},   {34, "I"},     {38, "J"},   {40, "K"},   {37, "L"},  {46, "M"},   {45, "N"},
    {31, "O"},  {35, "P"},     {12, "Q"},   {15, "R"},   {1, "S"},   {17, "T"},   {32, "U"},
    {9, "V"},   {13, "W"},     {7, "X"},    {16, "Y"},   {6, "Z"},   {29, "0"},   {18, "1"},
    {19, "2"},  {20, "3"},     {21, "4"},   {23, "5"},   {22, "6"},  {26, "7"},   {28, "8"},
    {25, "9"},  {49, "Space"}, {122, "F1"}, {120, "F2"}, {99, "F3"}, {118, "F4"}, {96, "F5"},
    {97, "F6"}, {41, ";"},     {39, "'"},   {43, ","},   {47, "."},  {44, "/"},
});

struct Modifier {
    std::uint32_t bit;
    std::string_view symbol;
    std::string_view localName;
};

constexpr auto modifiers = std::to_array<Modifier>({
    {0x1000, "⌃", "Ctrl+"},
    {0x800, "⌥", "Alt+"},
    {0x200, "⇧", "Shift+"},
    {0x100, "⌘", "Super+"},
});

std::string text(const HotKeyCombo& combo, std::string_view Modifier::*form) {
    std::string result;
    for (const Modifier& modifier : modifiers)
        if ((combo.carbonModifiers & modifier.bit) != 0) result += modifier.*form;
    return result + KeyNames::name(combo.keyCode);
}

} // namespace

std::string KeyNames::name(std::uint32_t keyCode) {
    const auto* const found = std::ranges::find(keys, keyCode, &Key::code);
    return found == keys.end() ? '#' + std::to_string(keyCode) : std::string(found->name);
}

std::string display(const HotKeyCombo& combo) {
    return text(combo, &Modifier::symbol);
}

std::string localName(const HotKeyCombo& combo) {
    return text(combo, &Modifier::localName);
}

} // namespace tavik
