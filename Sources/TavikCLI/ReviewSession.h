#pragma once

#include "Learning/Scheduler.h"
#include "Vocabulary/VocabularyStore.h"

#include <cstddef>
#include <optional>
#include <vector>

namespace tavik {

/// The words that are due, one after the other. A word that was forgotten comes again at the end.
/// The book and the scheduler must outlive it.
class ReviewSession {
public:
    ReviewSession(VocabularyStore& book, const Scheduler& scheduler, Date now, std::int64_t limit);

    /// Nothing when all is done.
    const VocabItem* current() const;

    /// The sentence to show with the current word: another one at each review.
    std::optional<Encounter> encounter() const;

    RatingMap<Date> preview(Date now) const;

    /// Records the rating of the current word and goes on to the next; false when the word is not
    /// in the book any more, so that there was nothing to rate. Throws `SQLiteDB::Error`; the
    /// session then stays where it is.
    bool rate(Rating rating, Date now);

    std::size_t position() const { return index; }

    std::size_t size() const { return queue.size(); }

private:
    VocabularyStore& book;
    const Scheduler& scheduler;
    std::vector<VocabItem> queue;
    std::size_t index = 0;
};

} // namespace tavik
