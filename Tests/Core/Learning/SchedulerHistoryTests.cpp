#include "Learning/FSRSScheduler.h"
#include "Learning/FixedIntervalScheduler.h"

#include <gtest/gtest.h>

#include <array>
#include <vector>

namespace tavik {
namespace {

using History = std::array<int, 13>;

const Date start = dateFromSeconds(1.7e9);

/// What became of a card after a sequence of ratings, each given when the card was due and
/// `daysLate` after that.
struct Outcome {
    Card card;
    History scheduledDays{};
};

Outcome play(const Scheduler& scheduler, const History& ratings, const History& daysLate = {}) {
    Outcome outcome{Card::new_(7, start), {}};
    Date now = start;
    for (std::size_t i = 0; i < ratings.size(); ++i) {
        if (i > 0)
            now = outcome.card.due + std::chrono::duration<double>(daysLate[i] * secondsPerDay);
        const auto [card, log] =
            scheduler.review(outcome.card, ratingFromRawValue(ratings[i]).value(), now);
        outcome.card = card;
        outcome.scheduledDays[i] = static_cast<int>(log.scheduledDays);
    }
    return outcome;
}

constexpr History goods{3, 3, 3, 3, 3, 3, 1, 1, 3, 3, 3, 3, 3};
constexpr History mixed{2, 3, 4, 2, 3, 1, 2, 3, 3, 4, 1, 4, 3};
constexpr History struggling{1, 1, 3, 3, 2, 4, 3, 1, 3, 3, 3, 2, 3};

TEST(FSRSHistory, thirteenRatingsGiveTheIntervalsOfTheModel) {
    const auto scheduler = FSRSScheduler::standard(0.9);
    const auto good = play(scheduler, goods);
    EXPECT_EQ(good.scheduledDays, (History{3, 11, 35, 101, 269, 669, 0, 0, 8, 19, 40, 83, 164}));
    EXPECT_NEAR(good.card.stability, 163.966457, 1e-6);
    EXPECT_NEAR(good.card.difficulty, 7.689882, 1e-6);
    EXPECT_EQ(good.card.lapses, 1) << "failing again in relearning is no second lapse";
    EXPECT_EQ(good.card.reps, 13);

    const auto mix = play(scheduler, mixed);
    EXPECT_EQ(mix.scheduledDays, (History{1, 3, 21, 30, 75, 0, 4, 9, 20, 84, 0, 13, 27}));
    EXPECT_NEAR(mix.card.stability, 26.689093, 1e-6);
    EXPECT_NEAR(mix.card.difficulty, 8.042209, 1e-6);

    const auto hard = play(scheduler, struggling);
    EXPECT_EQ(hard.scheduledDays, (History{0, 0, 1, 2, 2, 10, 21, 0, 4, 8, 16, 19, 34}));
    EXPECT_NEAR(hard.card.stability, 34.023345, 1e-6);
    EXPECT_EQ(hard.card.lapses, 1) << "failing before the first success is no lapse";
}

TEST(FSRSHistory, retentionAndLatenessShapeTheIntervals) {
    constexpr History someLate{0, 1, 3, 0, 2, -1, 0, 3, 0, 0, -1, 1, 0};
    const auto relaxed = play(FSRSScheduler::standard(0.85), goods, someLate);
    EXPECT_EQ(relaxed.scheduledDays,
              (History{5, 28, 124, 453, 1489, 4436, 0, 0, 25, 70, 181, 444, 1024}));
    EXPECT_NEAR(relaxed.card.stability, 625.616821, 1e-5);
    constexpr History moreLate{0, 1, 2, 3, 0, 1, 2, 3, 0, 1, 2, 3, 0};
    const auto strict = play(FSRSScheduler::standard(0.95), mixed, moreLate);
    EXPECT_EQ(strict.scheduledDays, (History{1, 2, 13, 16, 28, 0, 2, 5, 7, 20, 0, 4, 6}));
}

TEST(FSRSHistory, theFirstRatingAndTheShortStepFollowTheirOwnRules) {
    const auto scheduler = FSRSScheduler::standard(0.9);
    const Card fresh = Card::new_(1, start);
    const std::array days{0.0, 1.0, 3.0, 16.0};
    const std::array difficulties{7.1949, 6.4883, 5.2824, 3.2245};
    for (const Rating rating : allRatings) {
        const auto index = static_cast<std::size_t>(rawValue(rating)) - 1;
        const auto [card, log] = scheduler.review(fresh, rating, start);
        EXPECT_EQ(log.scheduledDays, days.at(index));
        EXPECT_NEAR(card.difficulty, difficulties.at(index), 1e-4);
        EXPECT_EQ(log.elapsedDays, 0);
    }
    const Card failed = scheduler.review(fresh, Rating::again, start).card;
    EXPECT_EQ(failed.state, CardState::learning);
    EXPECT_EQ(failed.due - start, std::chrono::seconds(600));
    EXPECT_EQ(scheduler.review(failed, Rating::hard, failed.due).log.scheduledDays, 1);
    EXPECT_EQ(scheduler.review(failed, Rating::easy, failed.due).log.scheduledDays, 2);
    EXPECT_NEAR(scheduler.review(failed, Rating::again, failed.due).card.stability, 0.2017, 1e-4);
}

TEST(FSRSHistory, theLongestIntervalBindsBeforeTheDistanceBetweenRatings) {
    const FSRSScheduler scheduler(0.9, fsrs::defaultWeights, 100, 600);
    Card card = Card::new_(1, start);
    card.state = CardState::review;
    card.stability = 5000;
    card.difficulty = 5;
    card.lastReview = start;
    const Date now = start + std::chrono::hours(24 * 400);
    EXPECT_EQ(scheduler.review(card, Rating::hard, now).log.scheduledDays, 100);
    EXPECT_EQ(scheduler.review(card, Rating::good, now).log.scheduledDays, 101);
    EXPECT_EQ(scheduler.review(card, Rating::easy, now).log.scheduledDays, 102);
}

TEST(FixedIntervalHistory, thirteenRatingsClimbAndFallOnTheLadder) {
    const FixedIntervalScheduler scheduler;
    EXPECT_EQ(play(scheduler, goods).scheduledDays,
              (History{1, 2, 4, 7, 15, 30, 0, 0, 2, 4, 7, 15, 30}));
    EXPECT_EQ(play(scheduler, mixed).scheduledDays,
              (History{1, 2, 7, 7, 15, 0, 1, 2, 4, 15, 0, 4, 7}));
    EXPECT_EQ(play(scheduler, struggling).scheduledDays,
              (History{0, 0, 2, 4, 4, 15, 30, 0, 2, 4, 7, 7, 15}));
    const auto easy = play(scheduler, {4, 4, 4, 4, 4, 4, 3, 1, 2, 3, 2, 4, 3});
    EXPECT_EQ(easy.scheduledDays, (History{2, 7, 30, 120, 365, 365, 365, 0, 1, 2, 2, 7, 15}));
    EXPECT_EQ(easy.card.lapses, 1);
    EXPECT_EQ(easy.card.difficulty, 0);
}

TEST(SwitchingSchedulers, eachReadsWhatTheOtherLeft) {
    const FixedIntervalScheduler fixed;
    const auto fsrs = FSRSScheduler::standard(0.9);
    const Card fromFSRS = fsrs.review(Card::new_(1, start), Rating::good, start).card;
    EXPECT_EQ(fixed.review(fromFSRS, Rating::good, start).log.scheduledDays, 15)
        << "3.17 days stand on rung 3";
    const Card bottom = fixed.review(Card::new_(1, start), Rating::good, start).card;
    ASSERT_EQ(bottom.stability, 0);
    const auto [card, log] = fsrs.review(bottom, Rating::good, bottom.due);
    Card tenth = bottom;
    tenth.stability = fsrs::minimumStability;
    EXPECT_EQ(card, fsrs.review(tenth, Rating::good, bottom.due).card);
    EXPECT_GE(log.scheduledDays, 1);
}

} // namespace
} // namespace tavik
