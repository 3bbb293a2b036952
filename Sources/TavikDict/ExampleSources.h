#pragma once

#include "Dictionary/DictionaryRecords.h"
#include "TavikDict/BuildObserver.h"

#include <filesystem>
#include <string>
#include <vector>

namespace tavik {

/// A bilingual pair and, where its source asks for it, whom to thank.
struct AttributedSentence {
    ExampleSentence sentence;
    std::string attribution;
};

/// Pairs of a file with English TAB Chinese on each line, such as `Resources/sentences.tsv`.
/// Blank lines pass; malformed ones are reported and left out.
std::vector<AttributedSentence> readSentencePairs(const std::filesystem::path& file,
                                                  BuildObserver& observer);

/// Pairs of a Tatoeba export: English TAB Chinese TAB attribution.
std::vector<AttributedSentence> readTatoeba(const std::filesystem::path& file,
                                            BuildObserver& observer);

} // namespace tavik
