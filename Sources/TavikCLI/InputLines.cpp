#include "TavikCLI/InputLines.h"

#include "Text/CharacterClasses.h"
#include "Text/Unicode.h"

#include <istream>
#include <string_view>

namespace tavik {

void forEachLine(std::istream& input, const std::function<void(const std::string&)>& take) {
    constexpr std::string_view byteOrderMark = "\xEF\xBB\xBF";
    bool isFirst = true;
    for (std::string line; std::getline(input, line); isFirst = false) {
        if (isFirst && line.starts_with(byteOrderMark)) line.erase(0, byteOrderMark.size());
        if (!trimmed(line, isWhiteSpace).empty()) take(line);
    }
}

} // namespace tavik
