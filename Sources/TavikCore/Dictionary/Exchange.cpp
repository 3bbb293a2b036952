#include "Dictionary/Exchange.h"

#include "Text/Unicode.h"

namespace tavik {

std::map<std::string, std::string> parseExchange(std::string_view text) {
    std::map<std::string, std::string> forms;
    for (const std::string_view item : split(text, [](char32_t scalar) { return scalar == '/'; })) {
        const std::size_t colon = item.find(':');
        if (colon == std::string_view::npos || colon == 0 || colon + 1 == item.size()) continue;
        forms.insert_or_assign(std::string(item.substr(0, colon)),
                               std::string(item.substr(colon + 1)));
    }
    return forms;
}

} // namespace tavik
