#include "Learning/FSRSScheduler.h"

#include "Learning/ReviewStep.h"

#include <algorithm>
#include <cmath>

namespace tavik {
namespace {

constexpr double standardMaximumInterval = 36500;
constexpr double standardRelearnStep = 600;

double usableStability(double stored) {
    return std::isfinite(stored) && stored > 0 ? stored : fsrs::minimumStability;
}

double usableDifficulty(double stored) {
    return std::isfinite(stored) ? stored : fsrs::minimumDifficulty;
}

/// `computed` unless the formula left the range of numbers.
double finiteOr(double fallback, double computed) {
    return std::isfinite(computed) ? computed : fallback;
}

} // namespace

FSRSScheduler::FSRSScheduler(double desiredRetention, const fsrs::Weights& weights,
                             double maximumInterval, double relearnStep)
    : model(desiredRetention, weights, maximumInterval), relearnStep(relearnStep) {}

FSRSScheduler FSRSScheduler::standard(double desiredRetention) {
    return {desiredRetention, fsrs::defaultWeights, standardMaximumInterval, standardRelearnStep};
}

ReviewResult FSRSScheduler::review(const Card& card, Rating rating, Date now) const {
    switch (card.state) {
    case CardState::new_:
        return reviewNew(card, rating, now);
    case CardState::learning:
    case CardState::relearning:
        return reviewLearning(card, rating, now);
    case CardState::review:
        break;
    }
    return reviewKnown(card, rating, now);
}

ReviewResult FSRSScheduler::reviewNew(const Card& card, Rating rating, Date now) const {
    Card after = card;
    after.stability = model.initialStability(rating);
    after.difficulty = model.initialDifficulty(rating);
    after.state = rating == Rating::again ? CardState::learning : CardState::review;

    const double own = model.interval(after.stability);
    const auto good = [&] { return model.interval(model.initialStability(Rating::good)); };
    const auto conclude = [&](Interval interval) {
        return concludeReview(card, after, rating, now, interval);
    };
    switch (rating) {
    case Rating::again:
        return conclude(Interval::shortStep(relearnStep));
    case Rating::hard:
        return conclude(Interval::days(std::min(own, good())));
    case Rating::good:
        return conclude(Interval::days(own));
    case Rating::easy:
        break;
    }
    return conclude(Interval::days(std::max(own, good() + 1)));
}

ReviewResult FSRSScheduler::reviewLearning(const Card& card, Rating rating, Date now) const {
    const double stability = std::max(usableStability(card.stability), fsrs::minimumStability);
    const auto stabilityAfter = [&](Rating given) {
        return finiteOr(stability, model.shortTermStability(stability, given));
    };
    Card after = card;
    after.stability = stabilityAfter(rating);
    after.difficulty = model.nextDifficulty(usableDifficulty(card.difficulty), rating);
    if (rating == Rating::again)
        return concludeReview(card, after, rating, now, Interval::shortStep(relearnStep));

    after.state = CardState::review;
    double days = model.interval(after.stability);
    if (rating == Rating::easy)
        days = std::max(days, model.interval(stabilityAfter(Rating::good)) + 1);
    return concludeReview(card, after, rating, now, Interval::days(days));
}

ReviewResult FSRSScheduler::reviewKnown(const Card& card, Rating rating, Date now) const {
    const double stability = usableStability(card.stability);
    const double difficulty = usableDifficulty(card.difficulty);
    const double recall = FSRSFormula::retrievability(elapsedDays(card, now), stability);
    Card after = card;
    after.difficulty = model.nextDifficulty(difficulty, rating);
    if (rating == Rating::again) {
        after.stability = finiteOr(stability, model.forgetStability(difficulty, stability, recall));
        after.state = CardState::relearning;
        after.lapses = countedUp(card.lapses);
        return concludeReview(card, after, rating, now, Interval::shortStep(relearnStep));
    }

    const double growth = model.recallGrowth(difficulty, stability, recall);
    const auto stabilityAfter = [&](Rating given) {
        return finiteOr(stability, model.grownStability(stability, growth, given));
    };
    RatingMap<double> days;
    days[Rating::good] = model.interval(stabilityAfter(Rating::good));
    days[Rating::hard] = std::min(model.interval(stabilityAfter(Rating::hard)), days[Rating::good]);
    days[Rating::good] = std::max(days[Rating::good], days[Rating::hard] + 1);
    days[Rating::easy] =
        std::max(model.interval(stabilityAfter(Rating::easy)), days[Rating::good] + 1);
    after.stability = stabilityAfter(rating);
    return concludeReview(card, after, rating, now, Interval::days(days[rating]));
}

} // namespace tavik
