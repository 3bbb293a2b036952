#pragma once

#include "Learning/Scheduler.h"

namespace tavik {

/// How long a card waits: a number of whole days, or a short step of seconds.
struct Interval {
    double seconds;
    /// 0 for a short step.
    double scheduledDays;

    static Interval days(double count) { return {count * secondsPerDay, count}; }

    static Interval shortStep(double seconds) { return {seconds, 0}; }
};

/// Days since the card's last review, with fractions; 0 when there was none or it lies in the
/// future.
double elapsedDays(const Card& card, Date now);

/// What every review ends with: counts it, dates it and logs it. `after` is `before` with the new
/// memory values and state.
ReviewResult concludeReview(const Card& before, Card after, Rating rating, Date now,
                            Interval interval);

/// One more, but never past the largest number.
std::int64_t countedUp(std::int64_t count);

} // namespace tavik
