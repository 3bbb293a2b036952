#include "Learning/FSRSFormula.h"

#include <algorithm>
#include <cmath>

namespace tavik {
namespace {

double clampedDifficulty(double difficulty) {
    return std::clamp(difficulty, fsrs::minimumDifficulty, fsrs::maximumDifficulty);
}

} // namespace

FSRSFormula::FSRSFormula(double desiredRetention, const fsrs::Weights& weights,
                         double maximumInterval)
    : w(weights), maximumInterval(maximumInterval),
      intervalScale(std::pow(desiredRetention, 1 / fsrs::decay) - 1), growthScale(std::exp(w[8])) {}

double FSRSFormula::retrievability(double elapsedDays, double stability) {
    static_assert(fsrs::decay == -0.5, "the curve is written as one over a square root");
    return 1 / std::sqrt(1 + fsrs::factor * elapsedDays / stability);
}

double FSRSFormula::interval(double stability) const {
    const double days = std::round(stability / fsrs::factor * intervalScale);
    return std::min(std::max(1.0, days), maximumInterval);
}

double FSRSFormula::initialStability(Rating rating) const {
    return std::max(w[static_cast<std::size_t>(rawValue(rating)) - 1], fsrs::minimumStability);
}

double FSRSFormula::initialDifficulty(Rating rating) const {
    return clampedDifficulty(w[4] - std::exp(w[5] * (rawValue(rating) - 1)) + 1);
}

double FSRSFormula::nextDifficulty(double difficulty, Rating rating) const {
    const double step = -w[6] * (rawValue(rating) - rawValue(Rating::good));
    const double damped = difficulty + step * (10 - difficulty) / 9;
    return clampedDifficulty(w[7] * initialDifficulty(Rating::easy) + (1 - w[7]) * damped);
}

double FSRSFormula::recallGrowth(double difficulty, double stability, double retrievability) const {
    return growthScale * (11 - difficulty) * std::pow(stability, -w[9])
           * (std::exp(w[10] * (1 - retrievability)) - 1);
}

double FSRSFormula::grownStability(double stability, double growth, Rating rating) const {
    const double penalty = rating == Rating::hard ? w[15] : 1;
    const double bonus = rating == Rating::easy ? w[16] : 1;
    return stability * (1 + growth * penalty * bonus);
}

double FSRSFormula::recallStability(double difficulty, double stability, double retrievability,
                                    Rating rating) const {
    return grownStability(stability, recallGrowth(difficulty, stability, retrievability), rating);
}

double FSRSFormula::forgetStability(double difficulty, double stability,
                                    double retrievability) const {
    const double forgotten = w[11] * std::pow(difficulty, -w[12])
                             * (std::pow(stability + 1, w[13]) - 1)
                             * std::exp(w[14] * (1 - retrievability));
    return std::min(stability, forgotten);
}

double FSRSFormula::shortTermStability(double stability, Rating rating) const {
    return stability * std::exp(w[17] * (rawValue(rating) - rawValue(Rating::good) + w[18]));
}

} // namespace tavik
