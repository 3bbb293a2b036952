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

bool ReviewSession::rate(Rating rating, Date now) {
    const Word& shown = queue[index].word;
    const std::int64_t wordID = shown.id;
    // Another program may have deleted the word, or restored a book where its id is another's.
    const auto present = book.item(wordID);
    const bool isSame =
        present && present->word.lemma == shown.lemma && present->word.createdAt == shown.createdAt;
    if (isSame) book.review(wordID, rating, scheduler, now);
    ++index;
    if (!isSame || rating != Rating::again) return isSame;
    if (auto again = book.item(wordID)) queue.push_back(std::move(*again));
    return true;
}

} // namespace tavik
