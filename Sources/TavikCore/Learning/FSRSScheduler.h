#pragma once

#include "Learning/FSRSFormula.h"
#include "Learning/Scheduler.h"

namespace tavik {

/// Schedules by FSRS-5. A new word that is known goes straight into the long-term cycle; a failure
/// waits one short step. There is no fuzz.
///
/// A card that comes from the fixed ladder, or from a damaged file, may hold a stability that is no
/// number above 0; it counts as 0.1 days.
class FSRSScheduler final : public Scheduler {
public:
    /// `maximumInterval` in days; the distance kept between `good` and `easy` may exceed it by a
    /// day or two. `relearnStep` in seconds.
    FSRSScheduler(double desiredRetention, const fsrs::Weights& weights, double maximumInterval,
                  double relearnStep);

    /// With the weights, the longest interval and the step that the application uses.
    static FSRSScheduler standard(double desiredRetention);

    ReviewResult review(const Card& card, Rating rating, Date now) const override;

    const FSRSFormula& formula() const { return model; }

private:
    ReviewResult reviewNew(const Card& card, Rating rating, Date now) const;
    ReviewResult reviewLearning(const Card& card, Rating rating, Date now) const;
    ReviewResult reviewKnown(const Card& card, Rating rating, Date now) const;

    FSRSFormula model;
    double relearnStep;
};

} // namespace tavik
