#include "Learning/ReviewStep.h"

#include <cmath>
#include <limits>

namespace tavik {

double elapsedDays(const Card& card, Date now) {
    if (!card.lastReview) return 0;
    const double days = (now - *card.lastReview).count() / secondsPerDay;
    return std::isfinite(days) && days > 0 ? days : 0;
}

ReviewResult concludeReview(const Card& before, Card after, Rating rating, Date now,
                            Interval interval) {
    after.due = now + std::chrono::duration<double>(interval.seconds);
    after.reps = countedUp(before.reps);
    after.lastReview = now;
    // The ladder hands it through from wherever it came.
    if (!std::isfinite(after.difficulty)) after.difficulty = 0;
    return {after,
            {before.wordID, rating, now, elapsedDays(before, now), interval.scheduledDays,
             before.state}};
}

std::int64_t countedUp(std::int64_t count) {
    return count < std::numeric_limits<std::int64_t>::max() ? count + 1 : count;
}

} // namespace tavik
