#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace tavik {

/// The address of a page or document, taken apart by RFC 3986.
struct URL {
    /// In lower case; empty for a relative reference.
    std::string scheme;
    /// Percent-escapes decoded; empty when there is none.
    std::string host;
    /// As it stands in the address, from its first "/".
    std::string path;

    /// Nothing when `address` is none. What should be escaped and is not
    /// counts as escaped.
    static std::optional<URL> parse(std::string_view address);

    bool isFile() const { return scheme == "file"; }

    /// The name behind the last "/" of the path, percent-escapes decoded where that gives text. A
    /// "/" at the end of the path does not count.
    std::string lastPathComponent() const;
};

/// `text` with every byte escaped that is no ASCII letter, digit or one of `allowed`.
std::string percentEncoded(std::string_view text, std::string_view allowed);

/// `text` without its percent-escapes; nothing when one is broken or they give no UTF-8.
std::optional<std::string> percentDecoded(std::string_view text);

} // namespace tavik
