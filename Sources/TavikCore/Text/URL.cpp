#include "Text/URL.h"

#include "Text/Unicode.h"

#include <uriparser/Uri.h>

#include <algorithm>
#include <charconv>
#include <memory>

namespace tavik {
namespace {

void appendEscape(std::string& result, char character) {
    constexpr std::string_view digits = "0123456789ABCDEF";
    const auto byte = static_cast<unsigned char>(character);
    result += '%';
    result += digits[byte >> 4U];
    result += digits[byte & 0xFU];
}

bool isAlphanumericASCII(char character) {
    return (character >= '0' && character <= '9') || (character >= 'A' && character <= 'Z')
           || (character >= 'a' && character <= 'z');
}

bool isHexDigit(char character) {
    return (character >= '0' && character <= '9') || (character >= 'A' && character <= 'F')
           || (character >= 'a' && character <= 'f');
}

bool beginsEscape(std::string_view text) {
    return text.size() > 2 && text[0] == '%' && isHexDigit(text[1]) && isHexDigit(text[2]);
}

/// Where the part with the host ends.
std::size_t endOfAuthority(std::string_view address) {
    const std::size_t begin = address.find("//");
    if (begin == std::string_view::npos) return 0;
    return std::min(address.find_first_of("/?#", begin + 2), address.size());
}

/// `address` with everything escaped that may not stand where it stands. Programs hand out such
/// addresses, and browsers take them.
std::string wellFormed(std::string_view address) {
    constexpr std::string_view allowed = "-._~:/?#@!$&'()*+,;=";
    const std::size_t authorityEnd = endOfAuthority(address);
    std::string result;
    for (std::size_t i = 0; i < address.size(); ++i) {
        const char character = address[i];
        const bool isBracket = character == '[' || character == ']';
        if (isAlphanumericASCII(character) || allowed.find(character) != std::string_view::npos
            || (isBracket && i < authorityEnd) || beginsEscape(address.substr(i)))
            result += character;
        else
            appendEscape(result, character);
    }
    return result;
}

std::string textOf(const UriTextRangeA& range) {
    return range.first == nullptr ? std::string() : std::string(range.first, range.afterLast);
}

std::string pathOf(const UriUriA& uri) {
    std::string path;
    for (const UriPathSegmentA* segment = uri.pathHead; segment != nullptr; segment = segment->next)
        path += '/' + textOf(segment->text);
    return path;
}

} // namespace

std::optional<URL> URL::parse(std::string_view address) {
    const std::string text = wellFormed(address);
    UriUriA uri{};
    if (text.empty() || uriParseSingleUriA(&uri, text.c_str(), nullptr) != URI_SUCCESS)
        return std::nullopt;
    const std::unique_ptr<UriUriA, void (*)(UriUriA*)> members(&uri, uriFreeUriMembersA);
    const std::string host = textOf(uri.hostText);
    return URL{lowercased(textOf(uri.scheme)), percentDecoded(host).value_or(host), pathOf(uri)};
}

std::string URL::lastPathComponent() const {
    const std::size_t end = path.find_last_not_of('/');
    if (end == std::string::npos) return path.empty() ? "" : "/";
    const std::size_t start = path.rfind('/', end) + 1;
    const std::string name = path.substr(start, end + 1 - start);
    return percentDecoded(name).value_or(name);
}

std::string percentEncoded(std::string_view text, std::string_view allowed) {
    std::string result;
    for (const char character : text)
        if (isAlphanumericASCII(character) || allowed.find(character) != std::string_view::npos)
            result += character;
        else
            appendEscape(result, character);
    return result;
}

std::optional<std::string> percentDecoded(std::string_view text) {
    std::string decoded;
    for (std::size_t i = 0; i < text.size(); ++i) {
        if (text[i] != '%') {
            decoded += text[i];
            continue;
        }
        const std::string_view digits = text.substr(i + 1, 2);
        unsigned char byte = 0;
        const char* const end = digits.data() + digits.size();
        if (digits.size() < 2 || std::from_chars(digits.data(), end, byte, 16).ptr != end)
            return std::nullopt;
        decoded += static_cast<char>(byte);
        i += 2;
    }
    return isValidUTF8(decoded) ? std::optional(decoded) : std::nullopt;
}

} // namespace tavik
