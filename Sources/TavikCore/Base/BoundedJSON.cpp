#include "Base/BoundedJSON.h"

#include <nlohmann/json.hpp>

namespace tavik {
namespace {

constexpr std::size_t maxDepth = 64;
constexpr std::size_t maxValues = 100000;

struct TooManyValues {};

/// How deep brackets are nested, up to just above `maxDepth`; what stands in strings does not
/// count.
std::size_t nesting(std::string_view text) {
    std::size_t depth = 0;
    std::size_t deepest = 0;
    bool isInString = false;
    for (std::size_t i = 0; i < text.size() && deepest <= maxDepth; ++i) {
        const char character = text[i];
        if (isInString && character == '\\')
            ++i;
        else if (character == '"')
            isInString = !isInString;
        else if (!isInString && (character == '{' || character == '['))
            deepest = std::max(deepest, ++depth);
        else if (!isInString && (character == '}' || character == ']') && depth > 0)
            --depth;
    }
    return deepest;
}

} // namespace

std::optional<nlohmann::json> parseBoundedJSON(std::string_view text) {
    if (nesting(text) > maxDepth) return std::nullopt;
    std::size_t count = 0;
    const auto isFew = [&](int, nlohmann::json::parse_event_t, const nlohmann::json&) {
        if (++count > maxValues) throw TooManyValues();
        return true;
    };
    try {
        auto json = nlohmann::json::parse(text, isFew, false);
        if (json.is_discarded()) return std::nullopt;
        return json;
    } catch (const TooManyValues&) {
        return std::nullopt;
    }
}

} // namespace tavik
