#include "TavikCLI/ReviewSession.h"

namespace tavik {

ReviewSession::ReviewSession(VocabularyStore& book, const Scheduler& scheduler, Date now,
                             std::int64_t limit)
    : book(book), scheduler(scheduler), queue(book.dueItems(now, limit)) {}

const VocabItem* ReviewSession::current() const {
    return index < queue.size() ? &queue[index] : nullptr;
}

std::optional<Encounter> ReviewSession::encounter() const {
    const auto all = book.encounters(queue[index].word.id);
    std::vector<Encounter> withSentence;
    for (const Encounter& encounter : all)
        if (encounter.sentence && !encounter.sentence->empty()) withSentence.push_back(encounter);
    if (withSentence.empty()) return std::nullopt;
    const auto reviews = static_cast<std::uint64_t>(queue[index].card.reps);
    return withSentence[reviews % withSentence.size()];
}

RatingMap<Date> ReviewSession::preview(Date now) const {
    return scheduler.preview(queue[index].card, now);
}

void ReviewSession::rate(Rating rating, Date now) {
    const std::int64_t wordID = queue[index].word.id;
    book.review(wordID, rating, scheduler, now);
    ++index;
    if (rating != Rating::again) return;
    if (auto again = book.item(wordID)) queue.push_back(std::move(*again));
}

} // namespace tavik
