#pragma once

#include "Base/Date.h"

#include <array>
#include <cstdint>
#include <optional>
#include <string_view>

namespace tavik {

enum class CardState {
    /// Never reviewed.
    new_,
    /// In its first learning, after a failed first review.
    learning,
    /// In the long-term cycle.
    review,
    /// Failed after having been learned.
    relearning,
};

/// The word that stands for the state in the database.
std::string_view rawValue(CardState state);
std::optional<CardState> cardStateFromRawValue(std::string_view text);

/// The state in Chinese, for people.
std::string_view label(CardState state);

enum class Rating { again = 1, hard = 2, good = 3, easy = 4 };

inline constexpr std::array allRatings{Rating::again, Rating::hard, Rating::good, Rating::easy};

constexpr int rawValue(Rating rating) {
    return static_cast<int>(rating);
}

std::optional<Rating> ratingFromRawValue(std::int64_t value);

/// The text of the rating's button.
std::string_view label(Rating rating);

/// One value for each rating.
template<typename T>
class RatingMap {
public:
    T& operator[](Rating rating) { return values[index(rating)]; }

    const T& operator[](Rating rating) const { return values[index(rating)]; }

    bool operator==(const RatingMap&) const = default;

private:
    static std::size_t index(Rating rating) {
        return static_cast<std::size_t>(rawValue(rating) - rawValue(Rating::again));
    }

    std::array<T, allRatings.size()> values{};
};

/// What a scheduler knows of one word. Every word of the book has exactly one card.
struct Card {
    std::int64_t wordID = 0;
    CardState state = CardState::new_;
    Date due;
    /// FSRS: days until recall falls to 90 %. Fixed ladder: the rung, a whole number from 0.
    double stability = 0;
    /// FSRS: 1 to 10, 0 before the first review. The fixed ladder leaves it as it is.
    double difficulty = 0;
    /// How many reviews there were.
    std::int64_t reps = 0;
    /// How often the word was forgotten out of the state `review`.
    std::int64_t lapses = 0;
    std::optional<Date> lastReview = std::nullopt;

    /// The card of a word that was just saved: due at once.
    static Card new_(std::int64_t wordID, Date now);

    bool operator==(const Card&) const = default;
};

/// One review, as it is logged.
struct ReviewLog {
    std::int64_t wordID = 0;
    Rating rating = Rating::again;
    Date reviewedAt;
    /// Days since the review before, never below 0; 0 for the first.
    double elapsedDays = 0;
    /// The interval chosen, in whole days; 0 for a step of seconds.
    double scheduledDays = 0;
    CardState stateBefore = CardState::new_;

    bool operator==(const ReviewLog&) const = default;
};

} // namespace tavik
