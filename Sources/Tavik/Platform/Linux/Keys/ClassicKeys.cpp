#include "Platform/Linux/Keys/ClassicKeys.h"

#include <algorithm>
#include <array>

namespace tavik {
namespace {

// In the order of their codes. Those of other keyboards than the American one, such as 10 beside
// the left Shift or 102 beside the space bar, mean what they mostly do where they are found.
constexpr auto keys = std::to_array<ClassicKey>({
    {0, 0x0061, "a", 38},
    {1, 0x0073, "s", 39},
    {2, 0x0064, "d", 40},
    {3, 0x0066, "f", 41},
    {4, 0x0068, "h", 43},
    {5, 0x0067, "g", 42},
    {6, 0x007a, "z", 52},
    {7, 0x0078, "x", 53},
    {8, 0x0063, "c", 54},
    {9, 0x0076, "v", 55},
    {10, 0x003c, "less", 94},
    {11, 0x0062, "b", 56},
    {12, 0x0071, "q", 24},
    {13, 0x0077, "w", 25},
    {14, 0x0065, "e", 26},
    {15, 0x0072, "r", 27},
    {16, 0x0079, "y", 29},
    {17, 0x0074, "t", 28},
    {18, 0x0031, "1", 10},
    {19, 0x0032, "2", 11},
    {20, 0x0033, "3", 12},
    {21, 0x0034, "4", 13},
    {22, 0x0036, "6", 15},
    {23, 0x0035, "5", 14},
    {24, 0x003d, "equal", 21},
    {25, 0x0039, "9", 18},
    {26, 0x0037, "7", 16},
    {27, 0x002d, "minus", 20},
    {28, 0x0038, "8", 17},
    {29, 0x0030, "0", 19},
    {30, 0x005d, "bracketright", 35},
    {31, 0x006f, "o", 32},
    {32, 0x0075, "u", 30},
    {33, 0x005b, "bracketleft", 34},
    {34, 0x0069, "i", 31},
    {35, 0x0070, "p", 33},
    {36, 0xff0d, "Return", 36},
    {37, 0x006c, "l", 46},
    {38, 0x006a, "j", 44},
    {39, 0x0027, "apostrophe", 48},
    {40, 0x006b, "k", 45},
    {41, 0x003b, "semicolon", 47},
    {42, 0x005c, "backslash", 51},
    {43, 0x002c, "comma", 59},
    {44, 0x002f, "slash", 61},
    {45, 0x006e, "n", 57},
    {46, 0x006d, "m", 58},
    {47, 0x002e, "period", 60},
    {48, 0xff09, "Tab", 23},
    {49, 0x0020, "space", 65},
    {50, 0x0060, "grave", 49},
    {51, 0xff08, "BackSpace", 22},
    {53, 0xff1b, "Escape", 9},
    {64, 0xffce, "F17", 195},
    {65, 0xffae, "KP_Decimal", 91},
    {67, 0xffaa, "KP_Multiply", 63},
    {69, 0xffab, "KP_Add", 86},
    {71, 0xff7f, "Num_Lock", 77},
    {72, 0x1008ff13, "XF86AudioRaiseVolume", 123},
    {73, 0x1008ff11, "XF86AudioLowerVolume", 122},
    {74, 0x1008ff12, "XF86AudioMute", 121},
    {75, 0xffaf, "KP_Divide", 106},
    {76, 0xff8d, "KP_Enter", 104},
    {78, 0xffad, "KP_Subtract", 82},
    {79, 0xffcf, "F18", 196},
    {80, 0xffd0, "F19", 197},
    {81, 0xffbd, "KP_Equal", 125},
    {82, 0xffb0, "KP_0", 90},
    {83, 0xffb1, "KP_1", 87},
    {84, 0xffb2, "KP_2", 88},
    {85, 0xffb3, "KP_3", 89},
    {86, 0xffb4, "KP_4", 83},
    {87, 0xffb5, "KP_5", 84},
    {88, 0xffb6, "KP_6", 85},
    {89, 0xffb7, "KP_7", 79},
    {90, 0xffd1, "F20", 198},
    {91, 0xffb8, "KP_8", 80},
    {92, 0xffb9, "KP_9", 81},
    {93, 0x00a5, "yen", 132},
    {94, 0x005f, "underscore", 97},
    {95, 0xffac, "KP_Separator", 129},
    {96, 0xffc2, "F5", 71},
    {97, 0xffc3, "F6", 72},
    {98, 0xffc4, "F7", 73},
    {99, 0xffc0, "F3", 69},
    {100, 0xffc5, "F8", 74},
    {101, 0xffc6, "F9", 75},
    {102, 0xff30, "Eisu_toggle", 131},
    {103, 0xffc8, "F11", 95},
    {104, 0xff27, "Hiragana_Katakana", 130},
    {105, 0xffca, "F13", 191},
    {106, 0xffcd, "F16", 194},
    {107, 0xffcb, "F14", 192},
    {109, 0xffc7, "F10", 76},
    {110, 0xff67, "Menu", 135},
    {111, 0xffc9, "F12", 96},
    {113, 0xffcc, "F15", 193},
    {114, 0xff63, "Insert", 118},
    {115, 0xff50, "Home", 110},
    {116, 0xff55, "Page_Up", 112},
    {117, 0xffff, "Delete", 119},
    {118, 0xffc1, "F4", 70},
    {119, 0xff57, "End", 115},
    {120, 0xffbf, "F2", 68},
    {121, 0xff56, "Page_Down", 117},
    {122, 0xffbe, "F1", 67},
    {123, 0xff51, "Left", 113},
    {124, 0xff53, "Right", 114},
    {125, 0xff54, "Down", 116},
    {126, 0xff52, "Up", 111},
});

constexpr std::uint32_t lowerCase(std::uint32_t keysym) {
    return keysym >= 'A' && keysym <= 'Z' ? keysym - 'A' + 'a' : keysym;
}

/// The number pad from KP_Home to KP_Delete, as it is without NumLock.
constexpr std::uint32_t firstOfPad = 0xff95;
constexpr auto withNumLock = std::to_array<std::uint32_t>({
    0xffb7,
    0xffb4,
    0xffb8,
    0xffb6,
    0xffb2,
    0xffb9,
    0xffb3,
    0xffb1,
    0xffb5,
    0xffb0,
    0xffae,
});

constexpr std::uint32_t numbered(std::uint32_t keysym) {
    const std::uint32_t place = keysym - firstOfPad;
    return place < withNumLock.size() ? withNumLock[place] : keysym;
}

template<typename Value>
const ClassicKey* keyWith(Value ClassicKey::*field, Value value) {
    const auto* const found = std::ranges::find(keys, value, field);
    return found == keys.end() ? nullptr : found;
}

} // namespace

const ClassicKey* classicKey(std::uint32_t code) {
    return keyWith(&ClassicKey::code, code);
}

const ClassicKey* classicKeyOfKeysym(std::uint32_t keysym) {
    return keyWith(&ClassicKey::keysym, numbered(lowerCase(keysym)));
}

} // namespace tavik
