#pragma once

#include "TavikDict/BuildObserver.h"

#include <cstdint>
#include <filesystem>
#include <optional>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

namespace tavik {

/// The public lemma list of English that ECDICT ships ("lemma.en.txt"): groups of a base form, its
/// frequency and its inflections. All words are lower-case.
class LemmaList {
public:
    /// Malformed lines are reported and left out. Throws `BuildError` when the file cannot be read.
    LemmaList(const std::filesystem::path& path, BuildObserver& observer);

    /// The base form of the most frequent group that has `form` as an inflection; nothing when
    /// there is none, or when `form` itself heads a group that is as frequent.
    std::optional<std::string> lemma(std::string_view form) const;

    /// Every inflection of the list.
    std::vector<std::string> forms() const;

    /// The comment at the head of the file, with the terms of its use.
    const std::string& terms() const { return comment; }

private:
    struct Group {
        std::string base;
        std::int64_t frequency = 0;
    };

    void addGroup(std::string_view base, std::int64_t frequency, std::string_view forms);

    std::unordered_map<std::string, Group> groups;
    std::unordered_map<std::string, std::int64_t> baseFrequencies;
    std::string comment;
};

} // namespace tavik
