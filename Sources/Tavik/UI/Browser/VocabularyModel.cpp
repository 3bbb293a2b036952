#include "UI/Browser/VocabularyModel.h"

#include "Vocabulary/PresentItem.h"

#include <algorithm>
#include <utility>

namespace tavik {

VocabularyModel::VocabularyModel(AppEnvironment& env) : env(env) {
    reload();
}

void VocabularyModel::setSearch(std::string text) {
    searchText.set(std::move(text));
    reload();
}

void VocabularyModel::select(std::optional<std::int64_t> wordID) {
    chosen.set(wordID);
    loadEncounters();
}

const VocabItem* VocabularyModel::itemWithID(std::int64_t wordID) const {
    const auto& items = found.value();
    const auto at =
        std::ranges::find_if(items, [&](const VocabItem& item) { return item.word.id == wordID; });
    return at == items.end() ? nullptr : &*at;
}

const VocabItem* VocabularyModel::selectedItem() const {
    return chosen.value() ? itemWithID(*chosen.value()) : nullptr;
}

void VocabularyModel::reload() {
    // Memory for one list is quicker to have than for two.
    found.set({});
    std::vector<VocabItem> items;
    try {
        items = env.store().items(searchText.value());
    } catch (const SQLiteDB::Error&) {
        // The environment has been told by the book itself.
    }
    found.set(std::move(items));
    loadEncounters();
}

void VocabularyModel::loadEncounters() {
    std::vector<Encounter> encounters;
    try {
        if (chosen.value()) encounters = env.store().encounters(*chosen.value());
    } catch (const SQLiteDB::Error&) {
        // As above.
    }
    met.set(std::move(encounters));
}

void VocabularyModel::delete_(std::int64_t wordID) {
    try {
        // Where the book was restored meanwhile, the id may be another word's.
        const VocabItem* const item = itemWithID(wordID);
        if (item == nullptr || presentItem(env.store(), item->word)) env.store().delete_(wordID);
    } catch (const SQLiteDB::Error&) {
        // The word is still there after the reload.
    }
    if (chosen.value() == wordID) chosen.set(std::nullopt);
    reload();
}

std::vector<Subscription>
VocabularyModel::observeChanges(const std::function<void()>& observer) const {
    std::vector<Subscription> subscriptions;
    const auto follow = [&](const auto& value) {
        subscriptions.push_back(value.observe([observer](const auto&) { observer(); }));
    };
    follow(found);
    follow(searchText);
    follow(chosen);
    follow(met);
    return subscriptions;
}

} // namespace tavik
