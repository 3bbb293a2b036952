#pragma once

#include "Learning/Card.h"
#include "Learning/FSRSConstants.h"

namespace tavik {

/// The formulas of FSRS-5, between stability S, difficulty D and retrievability R. They know
/// neither cards nor dates. A plain value.
class FSRSFormula {
public:
    /// `desiredRetention` is the recall probability wanted at the due date, strictly between 0 and
    /// 1; `maximumInterval` the longest interval in days.
    FSRSFormula(double desiredRetention, const fsrs::Weights& weights, double maximumInterval);

    /// The probability to recall after so many days.
    static double retrievability(double elapsedDays, double stability);

    /// Whole days until the recall probability falls to the desired one, at least 1.
    double interval(double stability) const;

    double initialStability(Rating rating) const;
    double initialDifficulty(Rating rating) const;
    double nextDifficulty(double difficulty, Rating rating) const;

    /// Stability after a success in the long-term cycle; `rating` is not `again`.
    double recallStability(double difficulty, double stability, double retrievability,
                           Rating rating) const;

    /// By how much of itself the stability grows after `good`: what the three successes share.
    double recallGrowth(double difficulty, double stability, double retrievability) const;
    double grownStability(double stability, double growth, Rating rating) const;

    /// Stability after a failure in the long-term cycle; never above `stability`.
    double forgetStability(double difficulty, double stability, double retrievability) const;

    /// Stability after any rating in (re)learning.
    double shortTermStability(double stability, Rating rating) const;

private:
    fsrs::Weights w;
    double maximumInterval;
    /// Interval over stability, apart from the curve's factor.
    double intervalScale;
    double growthScale;
};

} // namespace tavik
