#include "Capture/DocumentURL.h"

#include "Capture/Attribute.h"
#include "Text/URL.h"
#include "Text/Unicode.h"

#include <cstddef>

namespace tavik {
namespace {

constexpr int maxElements = 40;

/// Whether it can be an address at all.
bool isPlausible(const std::optional<std::string>& address) {
    constexpr std::size_t longest = 8192;
    return address && !address->empty() && address->size() <= longest
           && *address == printable(*address);
}

/// Whether a reader could open it elsewhere, unlike the pages of a program itself.
bool isDocumentAddress(const std::optional<std::string>& address) {
    const auto url = isPlausible(address) ? URL::parse(*address) : std::nullopt;
    return url && (url->scheme.starts_with("http") || url->isFile());
}

} // namespace

std::optional<std::string> documentURL(const ElementRef& element) {
    ElementRef enclosing = element;
    for (int count = 0; enclosing != nullptr && count < maxElements; ++count) {
        auto url = attribute(enclosing, &AccessibleElement::url);
        if (isDocumentAddress(url)) return url;
        if (attribute(enclosing, &AccessibleElement::role) == AccessibleRole::window) {
            auto document = attribute(enclosing, &AccessibleElement::document);
            return isPlausible(document) ? document : std::nullopt;
        }
        enclosing = attribute(enclosing, &AccessibleElement::parent);
    }
    return std::nullopt;
}

} // namespace tavik
