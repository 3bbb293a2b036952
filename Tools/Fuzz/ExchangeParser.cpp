#include "Check.h"
#include "Dictionary/Exchange.h"

namespace {

using tavik::fuzz::check;

bool holds(std::string_view text, char character) {
    return text.find(character) != std::string_view::npos;
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const unsigned char* data, std::size_t size) {
    const std::string_view input = tavik::fuzz::text(data, size);
    const auto forms = tavik::parseExchange(input);
    std::string written;
    for (const auto& [key, form] : forms) {
        check(!key.empty() && !form.empty(), "an item has a key and a form");
        check(!holds(key, ':') && !holds(key, '/') && !holds(form, '/'), "items end at a slash");
        std::string item = key;
        item += ':';
        item += form;
        check(input.find(item) != std::string_view::npos, "an item stands in the text");
        written += "//" + item;
    }
    check(tavik::parseExchange(written) == forms, "forms can be written again");
    return 0;
}
