#pragma once

#include "Dictionary/DictionaryRecords.h"
#include "TavikDict/ECDICT.h"
#include "TavikDict/LemmaTable.h"

#include <cstdint>
#include <string>
#include <vector>

namespace tavik {

/// A headword that people use, 1 being the most common one. Several may share a rank.
struct CommonWord {
    std::string word;
    std::int64_t rank = 0;
};

/// The headwords that a corpus ranks, and those that only the examples hold: phrases, contractions
/// and new words, but no inflected forms. All are on one scale, and in the order of `headwords`.
std::vector<CommonWord> commonWords(const std::vector<Headword>& headwords,
                                    const LemmaTable& lemmas,
                                    const std::vector<ExampleSentence>& examples);

} // namespace tavik
