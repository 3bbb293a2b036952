#include "TavikDict/LemmaList.h"

#include "TavikDict/LineReader.h"
#include "Text/CharacterClasses.h"
#include "Text/Unicode.h"

#include <algorithm>
#include <charconv>

namespace tavik {
namespace {

constexpr std::string_view arrow = " -> ";

/// "base/frequency"; a base without a number has the frequency 0.
std::pair<std::string_view, std::int64_t> baseAndFrequency(std::string_view head) {
    const std::size_t slash = std::min(head.find('/'), head.size());
    std::int64_t frequency = 0;
    std::from_chars(head.data() + std::min(slash + 1, head.size()), head.data() + head.size(),
                    frequency);
    return {head.substr(0, slash), frequency};
}

} // namespace

LemmaList::LemmaList(const std::filesystem::path& path, BuildObserver& observer) {
    LineReader reader(path);
    while (reader.next()) {
        const std::string_view line = trimmed(reader.line(), isWhiteSpace);
        if (line.empty()) continue;
        if (line.front() == ';') {
            comment.append(trimmed(line.substr(1), isWhiteSpace)).append("\n");
            continue;
        }
        const std::size_t mark = line.find(arrow);
        if (mark == std::string_view::npos || mark == 0 || !reader.isCleanText()) {
            observer.lineSkipped(path, reader.number(), "格式不对");
            continue;
        }
        const auto [base, frequency] = baseAndFrequency(line.substr(0, mark));
        addGroup(lowercased(base), frequency, line.substr(mark + arrow.size()));
    }
}

void LemmaList::addGroup(std::string_view base, std::int64_t frequency, std::string_view forms) {
    std::int64_t& known = baseFrequencies[std::string(base)];
    known = std::max(known, frequency);
    for (const std::string_view form :
         split(forms, [](char32_t scalar) { return scalar == ','; })) {
        Group& group = groups[lowercased(trimmed(form, isWhiteSpace))];
        if (group.base.empty() || frequency > group.frequency)
            group = {std::string(base), frequency};
    }
}

std::optional<std::string> LemmaList::lemma(std::string_view form) const {
    const auto group = groups.find(std::string(form));
    if (group == groups.end() || group->second.base == form) return std::nullopt;
    const auto own = baseFrequencies.find(std::string(form));
    if (own != baseFrequencies.end() && own->second >= group->second.frequency) return std::nullopt;
    return group->second.base;
}

std::vector<std::string> LemmaList::forms() const {
    std::vector<std::string> result;
    for (const auto& [form, group] : groups)
        result.push_back(form);
    return result;
}

} // namespace tavik
