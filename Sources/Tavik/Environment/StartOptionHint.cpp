#include "Environment/StartOptionHint.h"

#include "Text/Unicode.h"

#include <algorithm>
#include <cstddef>
#include <string_view>

namespace tavik {
namespace {

constexpr std::size_t maxListLength = 2000;

std::string printableName(const std::string& bundleID) {
    constexpr std::size_t maxNameLength = 100;
    return printable(firstCharacters(bundleID, maxNameLength));
}

} // namespace

std::optional<std::string> withStartOptionTold(const std::string& told,
                                               const std::string& bundleID) {
    const std::string name = lowercased(printableName(bundleID));
    const auto names = split(told, [](char32_t scalar) { return scalar == '\n'; });
    if (std::ranges::find(names, name) != names.end()) return std::nullopt;
    if (told.size() + name.size() > maxListLength) return std::nullopt;
    return told.empty() ? name : told + '\n' + name;
}

std::string startOptionHint(const std::string& bundleID) {
    return "「" + printableName(bundleID)
           + "」启动时带上选项 --force-renderer-accessibility，Tavik 才能读取它的网页。"
             "请退出该程序，再用这个选项启动它。";
}

} // namespace tavik
