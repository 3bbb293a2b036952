#include "ReviewMix.h"

#include "Learning/FSRSScheduler.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <fstream>
#include <random>
#include <stdexcept>

namespace tavik {
namespace {

constexpr double firstReview = 1767225600;
constexpr double desiredRetention = 0.9;
constexpr std::size_t longestHistory = 8;

constexpr std::array allStates{CardState::new_, CardState::learning, CardState::review,
                               CardState::relearning};

class CardMaker {
public:
    explicit CardMaker(std::uint64_t seed)
        : random(seed), scheduler(FSRSScheduler::standard(desiredRetention)) {}

    MixedReview review(CardState state, Rating rating) {
        const Card card = cardIn(state);
        return {card, rating, laterThan(card.due)};
    }

    void shuffle(std::vector<MixedReview>& mix) { std::shuffle(mix.begin(), mix.end(), random); }

private:
    Card cardIn(CardState state) {
        const Card fresh = Card::new_(static_cast<std::int64_t>(random() % 10000) + 1,
                                      dateFromSeconds(firstReview));
        switch (state) {
        case CardState::new_:
            return fresh;
        case CardState::learning:
            return reviewed(fresh, Rating::again);
        case CardState::review:
            return known(fresh);
        case CardState::relearning:
            break;
        }
        return reviewed(known(fresh), Rating::again);
    }

    Card known(Card card) {
        constexpr std::array successes{Rating::hard, Rating::good, Rating::easy};
        for (auto left = 1 + random() % longestHistory; left > 0; --left)
            card = reviewed(card, successes.at(random() % successes.size()));
        return card;
    }

    Card reviewed(const Card& card, Rating rating) {
        return scheduler.review(card, rating, laterThan(card.due)).card;
    }

    /// Up to four days later, at a whole second.
    Date laterThan(Date due) {
        return due + std::chrono::seconds(random() % static_cast<unsigned>(4 * secondsPerDay));
    }

    std::mt19937_64 random;
    FSRSScheduler scheduler;
};

std::int64_t milliseconds(Date date) {
    return std::llround(secondsSince1970(date) * 1000);
}

} // namespace

std::vector<MixedReview> reviewMix(std::size_t size) {
    CardMaker maker(size);
    std::vector<MixedReview> mix;
    for (std::size_t i = 0; i < size; ++i)
        mix.push_back(maker.review(allStates.at(i % allStates.size()),
                                   allRatings.at(i / allStates.size() % allRatings.size())));
    maker.shuffle(mix);
    return mix;
}

void writeReviewMix(const std::vector<MixedReview>& mix, const std::filesystem::path& file) {
    std::ofstream lines(file);
    lines.precision(17);
    for (const auto& [card, rating, now] : mix)
        lines << static_cast<int>(card.state) << ' ' << rawValue(rating) << ' ' << card.stability
              << ' ' << card.difficulty << ' ' << card.reps << ' ' << card.lapses << ' '
              << milliseconds(card.due) << ' '
              << (card.lastReview ? milliseconds(*card.lastReview) : 0) << ' ' << milliseconds(now)
              << '\n';
    lines.close();
    if (!lines) throw std::runtime_error("cannot write " + file.string());
}

} // namespace tavik
