#pragma once

namespace tavik {

/// The classes of Unicode scalars that the text rules speak of, by general category.

/// Categories L and M.
bool isLetter(char32_t scalar);
/// Categories L, M and N.
bool isAlphanumeric(char32_t scalar);
/// Categories P and S.
bool isPunctuationOrSymbol(char32_t scalar);
/// Category Z, U+0009 to U+000D and U+0085.
bool isWhiteSpace(char32_t scalar);
/// Category Zs and the tab.
bool isBlank(char32_t scalar);

/// LF, VT, FF, CR, U+0085, U+2028 and U+2029.
inline bool isNewline(char32_t scalar) {
    return (scalar >= 0x0A && scalar <= 0x0D) || scalar == 0x85 || scalar == 0x2028
           || scalar == 0x2029;
}

} // namespace tavik
