#pragma once

#include "TavikDict/BuildObserver.h"

#include <cstdint>
#include <filesystem>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace tavik {

/// One row of ECDICT's CSV file, its escapes resolved.
struct Headword {
    std::string word;
    std::string phonetic;
    std::string definition;
    std::string translation;
    std::optional<std::int64_t> collins;
    std::optional<std::int64_t> oxford;
    std::string tag;
    /// Rank in the British National Corpus; 0 for none.
    std::int64_t bnc = 0;
    /// Rank in a corpus of current English; 0 for none.
    std::int64_t frq = 0;
    std::string exchange;

    /// The better of both ranks, or 0 for a word without.
    std::int64_t rank() const;
};

/// One line of the file; nothing when it is malformed.
std::optional<Headword> parseHeadword(std::string_view line);

/// All headwords in the order of the file; malformed lines are reported and left out. Throws
/// `BuildError` when the file cannot be read or is not ECDICT's.
std::vector<Headword> readHeadwords(const std::filesystem::path& csv, BuildObserver& observer);

/// `exchange` without its items of key `key`, and with `key:form` in their place when there is a
/// `form`.
std::string exchangeWith(std::string_view exchange, std::string_view key,
                         const std::optional<std::string>& form);

/// The form of the last item of key `key`, or empty.
std::string_view exchangeForm(std::string_view exchange, std::string_view key);

} // namespace tavik
