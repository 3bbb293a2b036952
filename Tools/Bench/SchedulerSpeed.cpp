#include "SchedulerSpeed.h"

#include "Learning/FSRSScheduler.h"
#include "Learning/FixedIntervalScheduler.h"
#include "ReviewMix.h"
#include "Samples.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdio>
#include <stdexcept>

namespace tavik {
namespace {

constexpr std::size_t mixSize = 4096;
constexpr std::size_t rounds = 5;
constexpr std::size_t passesPerRound = 40;
constexpr double desiredRetention = 0.9;
constexpr double nanosecondsPerMicrosecond = 1000;

constexpr double reviewBudget = 200;
constexpr double leastRatio = 30;

using Mix = std::vector<MixedReview>;

/// Adds the nanoseconds per call of several passes over the mix; `operation` answers with a number
/// that depends on all its work.
template<typename Operation>
void measure(const Mix& mix, Samples& samples, Operation operation) {
    double sum = 0;
    for (std::size_t pass = 0; pass <= passesPerRound; ++pass) {
        const Stopwatch stopwatch;
        for (const MixedReview& review : mix)
            sum += operation(review);
        const double nanoseconds = stopwatch.microseconds() * nanosecondsPerMicrosecond;
        if (pass > 0) samples.add(nanoseconds / static_cast<double>(mix.size()));
    }
    if (!std::isfinite(sum)) throw std::runtime_error("a review answered with no number");
}

void measureReview(const Scheduler& scheduler, const Mix& mix, Samples& samples) {
    measure(mix, samples, [&](const MixedReview& mixed) {
        const auto [card, log] = scheduler.review(mixed.card, mixed.rating, mixed.now);
        return card.stability + log.scheduledDays;
    });
}

void measurePreview(const Scheduler& scheduler, const Mix& mix, Samples& samples) {
    measure(mix, samples, [&](const MixedReview& mixed) {
        const auto due = scheduler.preview(mixed.card, mixed.now);
        return secondsSince1970(due[Rating::again]) + secondsSince1970(due[Rating::easy]);
    });
}

/// Nanoseconds per call.
struct Costs {
    Samples fsrsReview;
    Samples fixedReview;
    Samples fsrsPreview;
    Samples fixedPreview;
    Samples nextShort;
    Samples nextLong;
    Samples repeatShort;
    Samples repeatLong;
};

/// All take turns, so that what disturbs the machine for a while hits them all.
Costs measured(const TsFSRS* peer, const std::filesystem::path& work) {
    const Mix mix = reviewMix(mixSize);
    const auto file = work / "review-mix.txt";
    writeReviewMix(mix, file);
    const auto fsrs = FSRSScheduler::standard(desiredRetention);
    const FixedIntervalScheduler fixed;
    Costs costs;
    for (std::size_t round = 0; round < rounds; ++round) {
        measureReview(fsrs, mix, costs.fsrsReview);
        measureReview(fixed, mix, costs.fixedReview);
        measurePreview(fsrs, mix, costs.fsrsPreview);
        measurePreview(fixed, mix, costs.fixedPreview);
        if (peer == nullptr) continue;
        peer->measure("next", "short", file, costs.nextShort);
        peer->measure("next", "long", file, costs.nextLong);
        peer->measure("repeat", "short", file, costs.repeatShort);
        peer->measure("repeat", "long", file, costs.repeatLong);
    }
    return costs;
}

void printRow(const char* title, const Samples& samples) {
    constexpr double perSecond = 1e9;
    std::printf("%-39s%9.1f %9.1f %11.0f", title, samples.median(), samples.max(),
                perSecond / samples.median());
}

void printLine(const char* title, const Samples& samples) {
    printRow(title, samples);
    std::printf("\n");
}

void printReview(const char* title, const Samples& samples) {
    printRow(title, samples);
    printBudget("median", samples.median(), reviewBudget);
    std::printf("\n");
}

void printRatio(const char* title, double ratio) {
    std::printf("%-39s%9.1f", title, ratio);
    printLeast("ratio", ratio, leastRatio);
    std::printf("\n");
}

double faster(const Samples& one, const Samples& other) {
    return std::min(one.median(), other.median());
}

void printPeer(const Costs& costs) {
    printLine("ts-fsrs next, with short-term steps", costs.nextShort);
    printLine("ts-fsrs next, without", costs.nextLong);
    printLine("ts-fsrs repeat, with short-term steps", costs.repeatShort);
    printLine("ts-fsrs repeat, without", costs.repeatLong);
    printHeading("The faster of ts-fsrs's two against FSRS", "    times");
    printRatio("next against review: a card and its log",
               faster(costs.nextShort, costs.nextLong) / costs.fsrsReview.median());
    printRatio("repeat against preview: all ratings",
               faster(costs.repeatShort, costs.repeatLong) / costs.fsrsPreview.median());
}

std::vector<TsFSRS::Step> followed(std::span<const Rating> ratings) {
    const auto scheduler = FSRSScheduler::standard(desiredRetention);
    std::vector<TsFSRS::Step> steps;
    Card card = Card::new_(1, dateFromSeconds(0));
    for (const Rating rating : ratings) {
        const auto [after, log] = scheduler.review(card, rating, card.due);
        steps.push_back({after.stability, log.scheduledDays});
        card = after;
    }
    return steps;
}

const char* name(Rating rating) {
    constexpr std::array<const char*, allRatings.size()> names{"again", "hard", "good", "easy"};
    return names.at(static_cast<std::size_t>(rawValue(rating)) - 1);
}

bool agree(const TsFSRS::Step& own, const TsFSRS::Step& other) {
    constexpr double tolerance = 1e-6;
    return own.days == other.days
           && std::abs(own.stability - other.stability) < tolerance * own.stability;
}

} // namespace

void reportSchedulerSpeed(const TsFSRS* peer, const std::filesystem::path& work) {
    const Costs costs = measured(peer, work);
    std::printf("%zu reviews of cards in all states with all ratings\n", mixSize);
    printHeading("ns per call", "  median       max  per second");
    printReview("FSRS review", costs.fsrsReview);
    printReview("fixed ladder review", costs.fixedReview);
    printLine("FSRS preview, 4 dates", costs.fsrsPreview);
    printLine("fixed ladder preview, 4 dates", costs.fixedPreview);
    if (peer != nullptr) printPeer(costs);
}

void reportAgreement(const TsFSRS& peer) {
    using enum Rating;
    constexpr std::array ratings{good,  good, good, good, good, good, again,
                                 again, good, good, good, good, good};
    const auto own = followed(ratings);
    const auto other = peer.follow(ratings);
    if (other.size() != own.size()) throw std::runtime_error("ts-fsrs left reviews out");
    printHeading("Stability and days, each when due", "        FSRS days          ts-fsrs days");
    bool doAgree = true;
    for (std::size_t i = 0; i < own.size(); ++i) {
        std::printf("%2zu %-32s%17.8f %4.0f %16.8f %4.0f%s\n", i + 1, name(ratings.at(i)),
                    own[i].stability, own[i].days, other[i].stability, other[i].days,
                    agree(own[i], other[i]) ? "" : "  DIFFERS");
        doAgree = doAgree && agree(own[i], other[i]);
    }
    std::printf("ts-fsrs counts whole days between reviews and rounds to 8 decimals.\n");
    if (!doAgree) throw std::runtime_error("FSRS and ts-fsrs differ");
}

} // namespace tavik
