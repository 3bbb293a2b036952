#include "Learning/Card.h"

#include <algorithm>

namespace tavik {
namespace {

struct StateTexts {
    CardState state;
    std::string_view rawValue;
    std::string_view label;
};

constexpr std::array stateTexts{
    StateTexts{CardState::new_, "new", "新词"},
    StateTexts{CardState::learning, "learning", "学习中"},
    StateTexts{CardState::review, "review", "复习中"},
    StateTexts{CardState::relearning, "relearning", "重新学习"},
};

const StateTexts& texts(CardState state) {
    return stateTexts.at(static_cast<std::size_t>(state));
}

} // namespace

std::string_view rawValue(CardState state) {
    return texts(state).rawValue;
}

std::string_view label(CardState state) {
    return texts(state).label;
}

std::optional<CardState> cardStateFromRawValue(std::string_view text) {
    const auto* const found = std::ranges::find(stateTexts, text, &StateTexts::rawValue);
    if (found == stateTexts.end()) return std::nullopt;
    return found->state;
}

std::optional<Rating> ratingFromRawValue(std::int64_t value) {
    for (const Rating rating : allRatings)
        if (rawValue(rating) == value) return rating;
    return std::nullopt;
}

std::string_view label(Rating rating) {
    constexpr std::array<std::string_view, allRatings.size()> labels{"忘记", "模糊", "记得",
                                                                     "太简单"};
    return labels.at(static_cast<std::size_t>(rawValue(rating)) - 1);
}

Card Card::new_(std::int64_t wordID, Date now) {
    Card card;
    card.wordID = wordID;
    card.due = now;
    return card;
}

} // namespace tavik
