#pragma once

#include "Learning/Card.h"

namespace tavik {

/// A card as it is after a review, and the log of that review.
struct ReviewResult {
    Card card;
    ReviewLog log;

    bool operator==(const ReviewResult&) const = default;
};

/// Decides when a card comes back. Schedulers are pure: the same card, rating and time always give
/// the same result, nothing is kept, and any thread may call. No card makes a review fail, and none
/// makes it answer with NaN or infinity, however damaged the card is.
class Scheduler {
public:
    virtual ~Scheduler() = default;

    virtual ReviewResult review(const Card& card, Rating rating, Date now) const = 0;

    /// When the card would be due after each rating.
    RatingMap<Date> preview(const Card& card, Date now) const;

protected:
    Scheduler() = default;
    Scheduler(const Scheduler&) = default;
    Scheduler(Scheduler&&) = default;
    Scheduler& operator=(const Scheduler&) = default;
    Scheduler& operator=(Scheduler&&) = default;
};

} // namespace tavik
