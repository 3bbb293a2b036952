#pragma once

#include "Base/Published.h"
#include "Environment/AppEnvironment.h"

#include <cstdint>
#include <functional>
#include <map>
#include <optional>
#include <string>
#include <vector>

namespace tavik {

/// One session of daily review: the words that are due when it is made, one after the other, each
/// with a sentence in which it was met. A word that was forgotten comes again at the end. For the
/// main thread.
///
/// Whatever fails is left out: a book that cannot be read has nothing to review, a rating that
/// cannot be written is passed over. The environment tells the user of it.
class ReviewModel {
public:
    /// How many words a session has at most.
    static constexpr std::int64_t sessionLimit = 500;

    /// The environment must outlive the model.
    explicit ReviewModel(AppEnvironment& env);

    ~ReviewModel() = default;
    ReviewModel(const ReviewModel&) = delete;
    ReviewModel& operator=(const ReviewModel&) = delete;

    const Published<std::vector<VocabItem>>& queue() const { return cards; }

    /// Of the current word in the queue.
    const Published<std::int64_t>& index() const { return position; }

    /// Whether the answer is shown.
    const Published<bool>& revealed() const { return isRevealed; }

    /// How the current word was met: another sentence at each of its reviews.
    const Published<std::optional<Encounter>>& encounter() const { return met; }

    /// Ratings given since the model was made.
    const Published<std::int64_t>& reviewedThisSession() const { return reviewed; }

    /// The meanings of the current word.
    const Published<std::vector<std::string>>& definitions() const { return meanings; }

    /// At most two.
    const Published<std::vector<ExampleSentence>>& examples() const { return sentences; }

    /// The size of the session: the words to review and those that have been.
    std::int64_t initialCount() const { return sessionSize; }

    /// Null when the session is finished.
    const VocabItem* current() const;

    /// Whether the current word was forgotten in this session and comes again.
    bool isRepetition() const { return position.value() >= freshCount; }

    /// How far each rating would push the current word; empty when there is none.
    std::map<Rating, std::string> previews() const;

    /// Begins again with the words that are due now.
    void reload();

    void reveal() { isRevealed.set(true); }

    /// Records the rating of the current word and goes on to the next.
    void rate(Rating rating);

    /// Calls the observer before each change, until the subscriptions end.
    std::vector<Subscription> observeChanges(const std::function<void()>& observer) const;

    AppEnvironment& environment() const { return env; }

private:
    void prepareCurrent();
    std::vector<Encounter> encountersOf(std::int64_t wordID) const;
    std::vector<std::string> definitionsOf(const Word& word) const;
    bool record(const VocabItem& item, Rating rating);
    void comeBack(std::int64_t wordID);

    AppEnvironment& env;
    Published<std::vector<VocabItem>> cards{{}};
    Published<std::int64_t> position{0};
    Published<bool> isRevealed{false};
    Published<std::optional<Encounter>> met{std::nullopt};
    Published<std::int64_t> reviewed{0};
    Published<std::vector<std::string>> meanings{{}};
    Published<std::vector<ExampleSentence>> sentences{{}};
    std::int64_t sessionSize = 0;
    std::int64_t freshCount = 0;
};

} // namespace tavik
