#include "Text/URL.h"

#include "Text/Unicode.h"

#include <uriparser/Uri.h>

#include <charconv>
#include <memory>

namespace tavik {
namespace {

std::string escaped(std::string_view text) {
    constexpr std::string_view digits = "0123456789ABCDEF";
    std::string result;
    for (const char character : text) {
        const auto byte = static_cast<unsigned char>(character);
        if (byte > 0x20 && byte < 0x7F) {
            result += character;
            continue;
        }
        result += '%';
        result += digits[byte >> 4U];
        result += digits[byte & 0xFU];
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
    const std::string text = escaped(address);
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
