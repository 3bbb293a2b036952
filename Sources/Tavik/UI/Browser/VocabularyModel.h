#pragma once

#include "Base/Published.h"
#include "Environment/AppEnvironment.h"

#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <vector>

namespace tavik {

/// What the window of the vocabulary book shows: the words that a search finds, and the encounters
/// of the one that is chosen. It reads the book anew at every change and keeps nothing of its own.
/// For the main thread.
///
/// What cannot be read is empty, and a word that cannot be deleted stays. The environment tells the
/// user of it.
class VocabularyModel {
public:
    /// The environment must outlive the model.
    explicit VocabularyModel(AppEnvironment& env);

    ~VocabularyModel() = default;
    VocabularyModel(const VocabularyModel&) = delete;
    VocabularyModel& operator=(const VocabularyModel&) = delete;

    /// The words found, newest first.
    const Published<std::vector<VocabItem>>& items() const { return found; }

    const Published<std::string>& search() const { return searchText; }

    /// Searches at once.
    void setSearch(std::string text);

    /// The id of the chosen word, which need not be among those found.
    const Published<std::optional<std::int64_t>>& selection() const { return chosen; }

    /// Chooses a word and reads its encounters.
    void select(std::optional<std::int64_t> wordID);

    /// Of the chosen word, newest first.
    const Published<std::vector<Encounter>>& encounters() const { return met; }

    /// The chosen word, if it is among those found.
    const VocabItem* selectedItem() const;

    /// Reads words and encounters anew.
    void reload();

    void loadEncounters();

    /// Removes the word from the book at once.
    void delete_(std::int64_t wordID);

    /// Calls the observer before each change, until the subscriptions end.
    std::vector<Subscription> observeChanges(const std::function<void()>& observer) const;

    AppEnvironment& environment() const { return env; }

private:
    const VocabItem* itemWithID(std::int64_t wordID) const;

    AppEnvironment& env;
    Published<std::vector<VocabItem>> found{{}};
    Published<std::string> searchText{{}};
    Published<std::optional<std::int64_t>> chosen{std::nullopt};
    Published<std::vector<Encounter>> met{{}};
};

} // namespace tavik
