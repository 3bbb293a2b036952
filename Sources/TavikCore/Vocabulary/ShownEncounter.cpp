#include "Vocabulary/ShownEncounter.h"

#include <algorithm>
#include <iterator>

namespace tavik {

std::optional<Encounter> encounterForReview(const std::vector<Encounter>& encounters,
                                            std::int64_t reps) {
    if (encounters.empty()) return std::nullopt;
    std::vector<Encounter> withSentence;
    std::ranges::copy_if(encounters, std::back_inserter(withSentence), [](const Encounter& each) {
        return each.sentence && !each.sentence->empty();
    });
    if (withSentence.empty()) return encounters.front();
    return withSentence[static_cast<std::uint64_t>(reps) % withSentence.size()];
}

std::optional<TextUtil::Highlight> highlighted(const Encounter& encounter, const Word& word) {
    return TextUtil::highlight(encounter.sentence.value_or(""),
                               {encounter.selection, word.headword, word.lemma});
}

} // namespace tavik
