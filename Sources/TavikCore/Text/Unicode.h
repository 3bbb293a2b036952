#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

namespace tavik {

/// Small Unicode helpers over ICU. Text is UTF-8; ill-formed bytes and lone surrogates read as
/// U+FFFD, so that no input makes a call fail. All are safe from any thread.

std::u16string utf16FromUTF8(std::string_view text);
std::string utf8FromUTF16(std::u16string_view text);

bool isValidUTF8(std::string_view text);

/// Full Unicode lower-casing, independent of locale.
std::string lowercased(std::string_view text);

/// The number of user-perceived characters (extended grapheme clusters).
std::size_t characterCount(std::u16string_view text);
std::size_t characterCount(std::string_view text);

/// At most the first `count` user-perceived characters of `text`; ill-formed bytes come out as
/// U+FFFD.
std::string firstCharacters(std::string_view text, std::size_t count);

/// The number of terminal columns that `text` takes: two for a wide character, none for a mark.
std::size_t displayWidth(std::string_view text);

/// A class of scalars, such as `isWhiteSpace`.
using ScalarClass = bool (*)(char32_t);

/// `text` without the scalars of `isTrimmed` at both ends.
std::string_view trimmed(std::string_view text, ScalarClass isTrimmed);

/// The non-empty pieces of `text` between scalars that satisfy `isSeparator`.
template<typename Predicate>
std::vector<std::string_view> split(std::string_view text, Predicate isSeparator);

/// Whether every scalar of `text` satisfies `predicate`.
template<typename Predicate>
bool allScalars(std::string_view text, Predicate predicate);

/// `text` with only the scalars that satisfy `predicate`.
template<typename Predicate>
std::string filteredScalars(std::string_view text, Predicate predicate);

/// Reads the scalar at the unit `offset` and moves `offset` behind it.
inline char32_t nextScalar(std::string_view text, std::size_t& offset);
char32_t nextScalar(std::u16string_view text, std::size_t& offset);
/// Reads the scalar before the byte `offset` and moves `offset` before it.
char32_t previousScalar(std::string_view text, std::size_t& offset);

/// `nextScalar` for a byte of any kind.
char32_t nextMultibyteScalar(std::string_view text, std::size_t& offset);

std::string joined(const std::vector<std::string_view>& pieces, std::string_view separator);

/// `text` with U+FFFD for every control character except the tab, safe to print on a terminal.
std::string printable(std::string_view text);

std::string replacingAll(std::string_view text, std::string_view from, std::string_view to);

inline char32_t nextScalar(std::string_view text, std::size_t& offset) {
    const auto byte = static_cast<unsigned char>(text[offset]);
    if (byte >= 0x80) return nextMultibyteScalar(text, offset);
    ++offset;
    return byte;
}

template<typename Predicate>
std::vector<std::string_view> split(std::string_view text, Predicate isSeparator) {
    std::vector<std::string_view> pieces;
    std::size_t start = 0;
    const auto close = [&](std::size_t end) {
        if (end > start) pieces.push_back(text.substr(start, end - start));
    };
    for (std::size_t offset = 0; offset < text.size();) {
        const std::size_t at = offset;
        if (!isSeparator(nextScalar(text, offset))) continue;
        close(at);
        start = offset;
    }
    close(text.size());
    return pieces;
}

template<typename Predicate>
bool allScalars(std::string_view text, Predicate predicate) {
    for (std::size_t offset = 0; offset < text.size();)
        if (!predicate(nextScalar(text, offset))) return false;
    return true;
}

template<typename Predicate>
std::string filteredScalars(std::string_view text, Predicate predicate) {
    std::string kept;
    for (std::size_t offset = 0; offset < text.size();) {
        const std::size_t start = offset;
        if (predicate(nextScalar(text, offset))) kept += text.substr(start, offset - start);
    }
    return kept;
}

} // namespace tavik
