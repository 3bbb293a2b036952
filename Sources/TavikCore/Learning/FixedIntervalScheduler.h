#pragma once

#include "Learning/Scheduler.h"

#include <array>

namespace tavik {

/// Moves a card along a fixed ladder of intervals: a success climbs, a failure falls to the bottom.
///
/// The rung is kept in the card's stability, cut to a whole number; so a card that FSRS has left at
/// 3.17 days stands on rung 3. One that is no number at all stands on the lowest.
class FixedIntervalScheduler final : public Scheduler {
public:
    /// The days of each rung.
    static constexpr std::array<double, 10> ladder{1, 2, 4, 7, 15, 30, 60, 120, 240, 365};

    /// `relearnStep` in seconds.
    explicit FixedIntervalScheduler(double relearnStep = 600) : relearnStep(relearnStep) {}

    ReviewResult review(const Card& card, Rating rating, Date now) const override;

private:
    double relearnStep;
};

} // namespace tavik
