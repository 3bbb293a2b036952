#include "Learning/Card.h"

#include "Base/EnumTexts.h"

namespace tavik {
namespace {

constexpr EnumTable<CardState, 4> stateTexts{{{CardState::new_, "new", "新词"},
                                              {CardState::learning, "learning", "学习中"},
                                              {CardState::review, "review", "复习中"},
                                              {CardState::relearning, "relearning", "重新学习"}}};

} // namespace

std::string_view rawValue(CardState state) {
    return textsOf(stateTexts, state).rawValue;
}

std::string_view label(CardState state) {
    return textsOf(stateTexts, state).label;
}

std::optional<CardState> cardStateFromRawValue(std::string_view text) {
    return caseWithRawValue(stateTexts, text);
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
