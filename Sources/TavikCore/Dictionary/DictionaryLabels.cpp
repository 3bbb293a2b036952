#include "Dictionary/DictionaryLabels.h"

#include <algorithm>
#include <array>
#include <utility>

namespace tavik {
namespace {

using Labels = std::pair<std::string_view, std::string_view>;

template<std::size_t count>
std::string_view labelOr(const std::array<Labels, count>& labels, std::string_view key,
                         std::string_view otherwise) {
    const auto* const found = std::find_if(labels.begin(), labels.end(),
                                           [&](const Labels& pair) { return pair.first == key; });
    return found == labels.end() ? otherwise : found->second;
}

} // namespace

std::string tagLabel(std::string_view tag) {
    constexpr std::array<Labels, 8> labels{{{"zk", "中考"},
                                            {"gk", "高考"},
                                            {"ky", "考研"},
                                            {"cet4", "四级"},
                                            {"cet6", "六级"},
                                            {"toefl", "托福"},
                                            {"ielts", "雅思"},
                                            {"gre", "GRE"}}};
    return std::string(labelOr(labels, tag, tag));
}

std::string exchangeLabel(std::string_view key) {
    constexpr std::array<Labels, 7> labels{{{"p", "过去式"},
                                            {"d", "过去分词"},
                                            {"i", "现在分词"},
                                            {"3", "第三人称单数"},
                                            {"r", "比较级"},
                                            {"t", "最高级"},
                                            {"s", "复数"}}};
    return std::string(labelOr(labels, key, ""));
}

} // namespace tavik
