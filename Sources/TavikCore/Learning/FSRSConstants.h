#pragma once

#include <array>

/// The numbers of FSRS-5 (https://github.com/open-spaced-repetition/fsrs4anki/wiki/The-Algorithm).
namespace tavik::fsrs {

/// The weights w0 to w18.
using Weights = std::array<double, 19>;

inline constexpr Weights defaultWeights{
    // Stability after the first rating: again, hard, good, easy.
    0.40255, 1.18385, 3.173, 15.69105,
    // Difficulty: after the first rating "again", exponent of the first rating, step per rating,
    // pull toward an easy card.
    7.1949, 0.5345, 1.4604, 0.0046,
    // Stability after a success: growth, loss of growth with stability, growth with forgetting.
    1.54575, 0.1192, 1.01925,
    // Stability after a failure: base, by difficulty, by stability, by forgetting.
    1.9395, 0.11, 0.29605, 2.2698,
    // The penalty of "hard" and the bonus of "easy".
    0.2315, 2.9898,
    // Stability in (re)learning: factor and offset.
    0.51655, 0.6621};

/// The forgetting curve: (1 + factor · t / S) ^ decay is 0.9 where t = S.
inline constexpr double decay = -0.5;
inline constexpr double factor = 19.0 / 81.0;

/// Days.
inline constexpr double minimumStability = 0.1;

inline constexpr double minimumDifficulty = 1;
inline constexpr double maximumDifficulty = 10;

} // namespace tavik::fsrs
