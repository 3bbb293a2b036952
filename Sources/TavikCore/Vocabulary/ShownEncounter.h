#pragma once

#include "Text/TextUtil.h"
#include "Vocabulary/VocabularyRecords.h"

#include <cstdint>
#include <optional>
#include <vector>

namespace tavik {

/// The encounter to show with a word at its review number `reps`: of those with a sentence another
/// one each time, or the first of all where none has a sentence.
std::optional<Encounter> encounterForReview(const std::vector<Encounter>& encounters,
                                            std::int64_t reps);

/// The sentence split around the word as it stands there; nothing where it cannot be found.
std::optional<TextUtil::Highlight> highlighted(const Encounter& encounter, const Word& word);

} // namespace tavik
