#include "Text/CharacterClasses.h"

#include <unicode/uchar.h>

#include <cstdint>

namespace tavik {
namespace {

bool isInCategories(char32_t scalar, std::uint32_t categories) {
    return (U_GET_GC_MASK(static_cast<UChar32>(scalar)) & categories) != 0;
}

constexpr std::uint32_t letters = U_GC_L_MASK | U_GC_M_MASK;

} // namespace

bool isLetter(char32_t scalar) {
    return isInCategories(scalar, letters);
}

bool isAlphanumeric(char32_t scalar) {
    return isInCategories(scalar, letters | U_GC_N_MASK);
}

bool isPunctuationOrSymbol(char32_t scalar) {
    return isInCategories(scalar, U_GC_P_MASK | U_GC_S_MASK);
}

bool isWhiteSpace(char32_t scalar) {
    return (scalar >= 0x09 && scalar <= 0x0D) || scalar == 0x85
           || isInCategories(scalar, U_GC_Z_MASK);
}

bool isBlank(char32_t scalar) {
    return scalar == '\t' || isInCategories(scalar, U_GC_ZS_MASK);
}

} // namespace tavik
