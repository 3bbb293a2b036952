#include "Dictionary/DictionaryLabels.h"

#include <algorithm>
#include <array>
#include <utility>

namespace tavik {
namespace {

using Labels = std::pair<std::string_view, std::string_view>;

constexpr std::array<Labels, 8> tagLabels{{{"zk", "中考"},
                                           {"gk", "高考"},
                                           {"ky", "考研"},
                                           {"cet4", "四级"},
                                           {"cet6", "六级"},
                                           {"toefl", "托福"},
                                           {"ielts", "雅思"},
                                           {"gre", "GRE"}}};

constexpr std::array<Labels, 7> inflectionLabels{{{"p", "过去式"},
                                                  {"d", "过去分词"},
                                                  {"i", "现在分词"},
                                                  {"3", "第三人称单数"},
                                                  {"s", "复数"},
                                                  {"r", "比较级"},
                                                  {"t", "最高级"}}};

} // namespace

std::string tagLabel(std::string_view tag) {
    const auto* const found = std::find_if(tagLabels.begin(), tagLabels.end(),
                                           [&](const Labels& pair) { return pair.first == tag; });
    return std::string(found == tagLabels.end() ? tag : found->second);
}

std::vector<Inflection> inflections(const DictEntry& entry) {
    std::vector<Inflection> result;
    for (const auto& [key, label] : inflectionLabels) {
        const auto form = entry.exchange.find(std::string(key));
        if (form != entry.exchange.end()) result.push_back({std::string(label), form->second});
    }
    return result;
}

} // namespace tavik
