#include "UI/Review/ReviewModel.h"

#include "Learning/IntervalLabel.h"
#include "Vocabulary/PresentItem.h"
#include "Vocabulary/ShownEncounter.h"

#include <utility>

namespace tavik {
namespace {

constexpr int mostExamples = 2;

} // namespace

ReviewModel::ReviewModel(AppEnvironment& env) : env(env) {
    reload();
}

const VocabItem* ReviewModel::current() const {
    const auto at = static_cast<std::size_t>(position.value());
    return at < cards.value().size() ? &cards.value()[at] : nullptr;
}

void ReviewModel::reload() {
    std::vector<VocabItem> due;
    try {
        due = env.store().dueItems(env.now(), sessionLimit);
    } catch (const SQLiteDB::Error&) {
        // The environment has been told by the book itself.
    }
    freshCount = static_cast<std::int64_t>(due.size());
    sessionSize = freshCount + reviewed.value();
    cards.set(std::move(due));
    position.set(0);
    prepareCurrent();
}

void ReviewModel::prepareCurrent() {
    isRevealed.set(false);
    const VocabItem* const item = current();
    if (item == nullptr) {
        met.set(std::nullopt);
        meanings.set({});
        sentences.set({});
        return;
    }
    met.set(encounterForReview(encountersOf(item->word.id), item->card.reps));
    meanings.set(definitionsOf(item->word));
    sentences.set(env.dictionary() == nullptr
                      ? std::vector<ExampleSentence>()
                      : env.dictionary()->examples(item->word.lemma, mostExamples));
}

std::vector<Encounter> ReviewModel::encountersOf(std::int64_t wordID) const {
    try {
        return env.store().encounters(wordID);
    } catch (const SQLiteDB::Error&) {
        return {};
    }
}

std::vector<std::string> ReviewModel::definitionsOf(const Word& word) const {
    if (env.dictionary() != nullptr)
        if (const auto entry = env.dictionary()->entry(word.lemma)) return entry->translations;
    return {word.brief};
}

std::map<Rating, std::string> ReviewModel::previews() const {
    std::map<Rating, std::string> labels;
    const VocabItem* const item = current();
    if (item == nullptr) return labels;
    const Date now = env.now();
    const RatingMap<Date> due = env.settings().scheduler()->preview(item->card, now);
    for (const Rating rating : allRatings)
        labels[rating] = intervalLabel(now, due[rating]);
    return labels;
}

void ReviewModel::rate(Rating rating) {
    const VocabItem* const item = current();
    if (item == nullptr) return;
    const std::int64_t wordID = item->word.id;
    const bool isRecorded = record(*item, rating);
    reviewed.set(reviewed.value() + 1);
    if (rating == Rating::again && isRecorded) comeBack(wordID);
    position.set(position.value() + 1);
    prepareCurrent();
}

/// False when there is no such word in the book any more.
bool ReviewModel::record(const VocabItem& item, Rating rating) {
    try {
        if (!presentItem(env.store(), item.word)) return false;
        env.store().review(item.word.id, rating, *env.settings().scheduler(), env.now());
    } catch (const SQLiteDB::Error&) {
        // The word stays due, and comes back in the next session.
    }
    return true;
}

void ReviewModel::comeBack(std::int64_t wordID) {
    try {
        auto fresh = env.store().item(wordID);
        if (!fresh) return;
        auto longer = cards.value();
        longer.push_back(*std::move(fresh));
        cards.set(std::move(longer));
    } catch (const SQLiteDB::Error&) {
        // It stays due.
    }
}

std::vector<Subscription> ReviewModel::observeChanges(const std::function<void()>& observer) const {
    std::vector<Subscription> subscriptions;
    const auto follow = [&](const auto& value) {
        subscriptions.push_back(value.observe([observer](const auto&) { observer(); }));
    };
    follow(cards);
    follow(position);
    follow(isRevealed);
    follow(met);
    follow(reviewed);
    follow(meanings);
    follow(sentences);
    return subscriptions;
}

} // namespace tavik
