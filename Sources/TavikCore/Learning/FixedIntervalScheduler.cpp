#include "Learning/FixedIntervalScheduler.h"

#include "Learning/ReviewStep.h"

#include <algorithm>
#include <cmath>

namespace tavik {
namespace {

constexpr int lastRung = static_cast<int>(FixedIntervalScheduler::ladder.size()) - 1;

/// -1 before the first review. Rungs above the ladder count as its last, those below as -2, from
/// where every success leads to the lowest.
int currentRung(const Card& card) {
    constexpr double belowAll = -2;
    if (card.state == CardState::new_) return -1;
    if (std::isnan(card.stability)) return 0;
    return static_cast<int>(std::clamp(card.stability, belowAll, double{lastRung}));
}

} // namespace

ReviewResult FixedIntervalScheduler::review(const Card& card, Rating rating, Date now) const {
    Card after = card;
    if (rating == Rating::again) {
        after.stability = 0;
        after.state = card.state == CardState::new_ ? CardState::learning : CardState::relearning;
        if (card.state == CardState::review) after.lapses = countedUp(card.lapses);
        return concludeReview(card, after, rating, now, Interval::shortStep(relearnStep));
    }
    const int climb = rawValue(rating) - rawValue(Rating::hard);
    const int rung = std::clamp(currentRung(card) + climb, 0, lastRung);
    after.stability = rung;
    after.state = CardState::review;
    return concludeReview(card, after, rating, now,
                          Interval::days(ladder.at(static_cast<std::size_t>(rung))));
}

} // namespace tavik
