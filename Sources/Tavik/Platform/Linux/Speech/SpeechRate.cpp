#include "Platform/Linux/Speech/SpeechRate.h"

#include <algorithm>
#include <cmath>

namespace tavik {
namespace {

/// Found with speech-dispatcher 0.11.4 and espeak-ng, by the length of a recorded sentence of
/// 5.91 s: at the rates -60, -40, -20, 10, 20, 30 and 50 it was said 0.70, 0.80, 0.90, 1.14, 1.29,
/// 1.42 and 1.72 times as fast. Each side of 0 is a line to within a hundredth.
constexpr double stepsPerFactorBelow = 200;
constexpr double stepsPerFactorAbove = 70;

constexpr double lowest = -100;
constexpr double highest = 100;

double stepsPerFactor(bool isSlow) {
    return isSlow ? stepsPerFactorBelow : stepsPerFactorAbove;
}

} // namespace

int speechRate(double factor, int usual) {
    if (!std::isfinite(factor)) return usual;
    const double usualSpeed = 1 + usual / stepsPerFactor(usual < 0);
    const double change = factor * usualSpeed - 1;
    return static_cast<int>(
        std::lround(std::clamp(change * stepsPerFactor(change < 0), lowest, highest)));
}

} // namespace tavik
