#pragma once

#include "Learning/Card.h"

#include <filesystem>
#include <vector>

namespace tavik {

/// A review to be measured.
struct MixedReview {
    Card card;
    Rating rating = Rating::again;
    Date now;
};

/// Reviews of cards in all states with all ratings, in equal shares and without order. The cards
/// have the histories that FSRS gives them. A mix of the same size is always the same.
std::vector<MixedReview> reviewMix(std::size_t size);

/// Writes a line for each review, for another program to read: the numbers of state and rating,
/// stability, difficulty, reps, lapses, and the milliseconds since 1970 of due date, last review
/// (0 for none) and review.
void writeReviewMix(const std::vector<MixedReview>& mix, const std::filesystem::path& file);

} // namespace tavik
