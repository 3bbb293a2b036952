#include "TavikCLI/ReviewSession.h"

#include "Vocabulary/PresentItem.h"
#include "Vocabulary/ShownEncounter.h"

namespace tavik {

ReviewSession::ReviewSession(VocabularyStore& book, const Scheduler& scheduler, Date now,
                             std::int64_t limit)
    : book(book), scheduler(scheduler), queue(book.dueItems(now, limit)) {}

const VocabItem* ReviewSession::current() const {
    return index < queue.size() ? &queue[index] : nullptr;
}

std::optional<Encounter> ReviewSession::encounter() const {
    return encounterForReview(book.encounters(queue[index].word.id), queue[index].card.reps);
}

RatingMap<Date> ReviewSession::preview(Date now) const {
    return scheduler.preview(queue[index].card, now);
}

bool ReviewSession::rate(Rating rating, Date now) {
    const std::int64_t wordID = queue[index].word.id;
    // Another program may have deleted the word.
    const bool isPresent = presentItem(book, queue[index].word).has_value();
    if (isPresent) book.review(wordID, rating, scheduler, now);
    ++index;
    if (!isPresent || rating != Rating::again) return isPresent;
    if (auto again = book.item(wordID)) queue.push_back(std::move(*again));
    return true;
}

} // namespace tavik
