#include "Learning/FSRSScheduler.h"
#include "Learning/FixedIntervalScheduler.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <random>

namespace tavik {
namespace {

const Date now = dateFromSeconds(1.8e9);

/// Makes cards such as the store may hold.
class RandomCards {
public:
    Card honest() {
        Card card = Card::new_(pick(1, 1000), now);
        card.state = static_cast<CardState>(pick(0, 3));
        if (card.state == CardState::new_) return card;
        card.stability = std::exp(real(-3, 11));
        card.difficulty = real(1, 10);
        card.reps = pick(1, 500);
        card.lapses = pick(0, 50);
        card.lastReview = now + std::chrono::duration<double>(real(-4e8, 1e6));
        card.due = now + std::chrono::duration<double>(real(-1e7, 1e7));
        return card;
    }

    /// One with values that only the other scheduler or a damaged file leaves.
    Card strange() {
        Card card = honest();
        card.stability = strangeNumber();
        card.difficulty = strangeNumber();
        card.reps = std::numeric_limits<std::int64_t>::max();
        card.lapses = std::numeric_limits<std::int64_t>::max();
        card.lastReview = dateFromSeconds(strangeNumber());
        return card;
    }

    Rating rating() { return allRatings.at(static_cast<std::size_t>(pick(0, 3))); }

private:
    int pick(int low, int high) { return std::uniform_int_distribution(low, high)(random); }

    double real(double low, double high) {
        return std::uniform_real_distribution(low, high)(random);
    }

    double strangeNumber() {
        using Limits = std::numeric_limits<double>;
        const std::array numbers{0.0,
                                 -0.0,
                                 -1.0,
                                 1e-310,
                                 1e-9,
                                 1e9,
                                 -1e300,
                                 1e308,
                                 Limits::max(),
                                 -1e18,
                                 1e300,
                                 3.5,
                                 Limits::infinity(),
                                 -Limits::infinity(),
                                 Limits::quiet_NaN()};
        return numbers.at(static_cast<std::size_t>(pick(0, static_cast<int>(numbers.size()) - 1)));
    }

    std::mt19937 random{20261121};
};

class SchedulerLaws : public testing::TestWithParam<const Scheduler*> {
protected:
    /// What holds after every review of every card.
    static void expectSane(const Card& before, Rating rating, const ReviewResult& result) {
        const auto& [card, log] = result;
        for (const double number : {card.stability, card.difficulty, log.elapsedDays,
                                    log.scheduledDays, secondsSince1970(card.due)})
            ASSERT_TRUE(std::isfinite(number));
        ASSERT_GE(log.elapsedDays, 0);
        ASSERT_GE(log.scheduledDays, 0);
        ASSERT_GT(card.due, now);
        ASSERT_EQ(card.lastReview, now);
        ASSERT_GE(card.reps, before.reps);
        ASSERT_EQ(log.stateBefore, before.state);
        ASSERT_EQ(log.scheduledDays == 0, rating == Rating::again);
        ASSERT_EQ(log.wordID, before.wordID);
    }

    const Scheduler& scheduler = *GetParam();
    RandomCards cards;
};

TEST_P(SchedulerLaws, aBetterRatingNeverComesBackSooner) {
    for (int round = 0; round < 20000; ++round) {
        const Card card = cards.honest();
        const auto due = scheduler.preview(card, now);
        ASSERT_LT(due[Rating::again], due[Rating::hard]);
        ASSERT_LE(due[Rating::hard], due[Rating::good]);
        ASSERT_LE(due[Rating::good], due[Rating::easy]);
    }
}

TEST_P(SchedulerLaws, previewIsWhatReviewDoesAndBothAreRepeatable) {
    for (int round = 0; round < 20000; ++round) {
        const Card card = round % 2 == 0 ? cards.honest() : cards.strange();
        const Rating rating = cards.rating();
        const auto result = scheduler.review(card, rating, now);
        expectSane(card, rating, result);
        if (HasFatalFailure()) return;
        ASSERT_EQ(result.card.due, scheduler.preview(card, now)[rating]);
        ASSERT_EQ(result, scheduler.review(card, rating, now));
    }
}

TEST_P(SchedulerLaws, aCardMayGoBackAndForthBetweenSchedulers) {
    const FixedIntervalScheduler fixed;
    for (int round = 0; round < 500; ++round) {
        Card card = round % 2 == 0 ? cards.honest() : cards.strange();
        for (int step = 0; step < 30; ++step) {
            const Scheduler& chosen = step % 3 == 0 ? fixed : scheduler;
            const Rating rating = cards.rating();
            const auto result = chosen.review(card, rating, now);
            expectSane(card, rating, result);
            if (HasFatalFailure()) return;
            card = result.card;
        }
    }
}

const FSRSScheduler usual = FSRSScheduler::standard(0.9);
const FSRSScheduler strict = FSRSScheduler::standard(0.99);
const FixedIntervalScheduler ladder;

std::string schedulerName(const testing::TestParamInfo<const Scheduler*>& instance) {
    constexpr std::array names{"usual", "strict", "ladder"};
    return names.at(instance.index);
}

INSTANTIATE_TEST_SUITE_P(, SchedulerLaws, testing::Values(&usual, &strict, &ladder), schedulerName);

} // namespace
} // namespace tavik
