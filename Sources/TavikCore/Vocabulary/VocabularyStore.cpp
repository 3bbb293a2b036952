#include "Vocabulary/VocabularyStore.h"

#include "Explanation/ExplanationJSON.h"
#include "Text/CharacterClasses.h"
#include "Text/Unicode.h"
#include "Vocabulary/EmptiedBook.h"
#include "Vocabulary/VocabularyRows.h"
#include "Vocabulary/VocabularySQL.h"
#include "Vocabulary/VocabularySchema.h"

#include <nlohmann/json.hpp>

#include <chrono>
#include <thread>
#include <utility>

namespace tavik {
namespace {

using Value = SQLiteDB::Value;

Value optionalText(const std::optional<std::string>& text) {
    return text ? Value(*text) : Value(SQLiteDB::Null{});
}

Value optionalDate(const std::optional<Date>& date) {
    if (!date) return SQLiteDB::Null{};
    return secondsSince1970(*date);
}

Value textOf(std::string_view text) {
    return std::string(text);
}

std::int64_t version(SQLiteDB& db) {
    const auto rows = db.query(VocabularySQL::version);
    return rows.empty() ? 0 : rows.front().int_("user_version").value_or(0);
}

/// Whether another program, which has begun to create the same file, is done in the time that
/// any other lock is waited for.
bool wasCreatedMeanwhile(SQLiteDB& db) {
    using namespace std::chrono_literals;
    for (int attempt = 0; attempt < 300; ++attempt) {
        if (version(db) > 0) return true;
        std::this_thread::sleep_for(10ms);
    }
    return false;
}

void setUpSchema(SQLiteDB& db) {
    if (version(db) > 0) return;
    try {
        db.execute(VocabularySchema::creation);
    } catch (const SQLiteDB::Error&) {
        if (!wasCreatedMeanwhile(db)) throw;
    }
}

/// The path, if its file may be opened.
const std::string& checked(const std::string& path) {
    if (isEmptiedBook(path)) throw EmptiedBookError(path);
    return path;
}

} // namespace

VocabularyStore::VocabularyStore(const std::string& path) : db(checked(path), false) {
    setUpSchema(db);
}

void VocabularyStore::setOnChange(std::function<void()> callback) {
    const std::lock_guard guard(callbackLock);
    onChange = std::move(callback);
}

void VocabularyStore::setOnFailure(std::function<void(const SQLiteDB::Error&)> callback) {
    const std::lock_guard guard(callbackLock);
    onFailure = std::move(callback);
}

void VocabularyStore::announceChange() {
    std::function<void()> callback;
    {
        const std::lock_guard guard(callbackLock);
        callback = onChange;
    }
    if (callback) callback();
}

void VocabularyStore::announce(const SQLiteDB::Error& failure) const {
    std::function<void(const SQLiteDB::Error&)> callback;
    {
        const std::lock_guard guard(callbackLock);
        callback = onFailure;
    }
    if (callback) callback(failure);
}

template<typename Body>
auto VocabularyStore::announcingFailure(Body body) const {
    try {
        return body();
    } catch (const SQLiteDB::Error& failure) {
        announce(failure);
        throw;
    }
}

VocabularyStore::AddResult VocabularyStore::add(
    const std::string& lemma, const std::string& headword, const std::optional<DictEntry>& entry,
    const std::string& selection, const std::optional<std::string>& sentence,
    const std::optional<std::string>& contextMeaning, const SourceInfo& source, Date now) {
    const auto result = announcingFailure([&] {
        return db.transaction([&] {
            AddResult added;
            const auto known = db.query(VocabularySQL::wordIDForLemma, {lemma});
            const auto id = known.empty() ? std::nullopt : known.front().int_("id");
            added.isNewWord = !id;
            added.wordID = id ? *id : insertWord(lemma, headword, entry, now);
            if (db.query(VocabularySQL::sameEncounter, {added.wordID, sentence.value_or("")})
                    .empty())
                db.query(VocabularySQL::insertEncounter,
                         {added.wordID, selection, optionalText(sentence),
                          optionalText(contextMeaning), optionalText(source.appName),
                          optionalText(source.bundleID), optionalText(source.url),
                          secondsSince1970(now)});
            return added;
        });
    });
    announceChange();
    return result;
}

std::int64_t VocabularyStore::insertWord(const std::string& lemma, const std::string& headword,
                                         const std::optional<DictEntry>& entry, Date now) {
    const std::string phonetic = entry ? entry->phonetic : std::string();
    const std::string brief = entry ? entry->brief() : std::string();
    db.query(VocabularySQL::insertWord, {lemma, headword, phonetic, brief, secondsSince1970(now)});
    const std::int64_t id = db.lastInsertRowID();
    save(Card::new_(id, now));
    return id;
}

void VocabularyStore::save(const Card& card) {
    db.query(VocabularySQL::upsertCard,
             {card.wordID, textOf(rawValue(card.state)), secondsSince1970(card.due), card.stability,
              card.difficulty, card.reps, card.lapses, optionalDate(card.lastReview)});
}

Card VocabularyStore::review(std::int64_t wordID, Rating rating, const Scheduler& scheduler,
                             Date now) {
    const auto after = announcingFailure([&] {
        return db.transaction([&]() -> std::optional<Card> {
            const auto before = storedCard(wordID);
            if (!before) return std::nullopt;
            const auto [reviewed, log] = scheduler.review(*before, rating, now);
            save(reviewed);
            db.query(VocabularySQL::insertReviewLog,
                     {log.wordID, std::int64_t{rawValue(log.rating)},
                      textOf(rawValue(log.stateBefore)), secondsSince1970(log.reviewedAt),
                      log.elapsedDays, log.scheduledDays});
            return reviewed;
        });
    });
    if (!after) throw SQLiteDB::Error::step("no card for word " + std::to_string(wordID));
    announceChange();
    return *after;
}

void VocabularyStore::delete_(std::int64_t wordID) {
    announcingFailure([&] { return db.query(VocabularySQL::deleteWord, {wordID}); });
    announceChange();
}

std::optional<Card> VocabularyStore::card(std::int64_t wordID) const {
    return announcingFailure([&] { return storedCard(wordID); });
}

std::optional<Card> VocabularyStore::storedCard(std::int64_t wordID) const {
    const auto rows = db.query(VocabularySQL::card, {wordID});
    if (rows.empty()) return std::nullopt;
    return VocabularyRows::card(rows.front(), currentDate());
}

std::optional<std::int64_t> VocabularyStore::wordIDForLemma(const std::string& lemma) const {
    try {
        const auto rows =
            announcingFailure([&] { return db.query(VocabularySQL::wordIDForLemma, {lemma}); });
        return rows.empty() ? std::nullopt : rows.front().int_("id");
    } catch (const SQLiteDB::Error&) {
        return std::nullopt;
    }
}

std::vector<VocabItem> VocabularyStore::items(std::string_view search) const {
    const std::string_view wanted = trimmed(search, isBlank);
    if (wanted.empty()) return itemsWhere(VocabularySQL::newestFirst, {});
    return itemsWhere(std::string(VocabularySQL::matching) + VocabularySQL::newestFirst,
                      {'%' + std::string(wanted) + '%'});
}

std::vector<VocabItem> VocabularyStore::dueItems(Date at, std::int64_t limit) const {
    return itemsWhere(VocabularySQL::mostOverdueFirst, {secondsSince1970(at), limit});
}

std::optional<VocabItem> VocabularyStore::item(std::int64_t wordID) const {
    auto items = itemsWhere(VocabularySQL::withID, {wordID});
    if (items.empty()) return std::nullopt;
    return std::move(items.front());
}

std::vector<VocabItem> VocabularyStore::itemsWhere(const std::string& clause,
                                                   const std::vector<Value>& args) const {
    return announcingFailure([&] {
        const Date now = currentDate();
        const std::string encounters = VocabularySQL::encounters;
        const auto rows = db.query(VocabularySQL::items + clause, args);
        std::vector<VocabItem> items;
        items.reserve(rows.size());
        for (const auto& row : rows) {
            VocabItem& item = items.emplace_back(VocabularyRows::item(row, now));
            // The newest comes first.
            const auto latest = db.query(encounters, {item.word.id}, 1);
            if (!latest.empty())
                item.latest = VocabularyRows::encounter(latest.front(), item.word.id, now);
        }
        return items;
    });
}

std::vector<Encounter> VocabularyStore::encounters(std::int64_t wordID) const {
    return announcingFailure([&] {
        const Date now = currentDate();
        std::vector<Encounter> encounters;
        for (const auto& row : db.query(VocabularySQL::encounters, {wordID}))
            encounters.push_back(VocabularyRows::encounter(row, wordID, now));
        return encounters;
    });
}

std::int64_t VocabularyStore::count(const char* statement, const std::vector<Value>& args) const {
    try {
        const auto rows = announcingFailure([&] { return db.query(statement, args); });
        return rows.empty() ? 0 : rows.front().int_("n").value_or(0);
    } catch (const SQLiteDB::Error&) {
        return 0;
    }
}

std::int64_t VocabularyStore::wordCount() const {
    return count(VocabularySQL::wordCount, {});
}

std::int64_t VocabularyStore::dueCount(Date at) const {
    return count(VocabularySQL::dueCount, {secondsSince1970(at)});
}

std::int64_t VocabularyStore::reviewCount(Date since) const {
    return count(VocabularySQL::reviewCount, {secondsSince1970(since)});
}

std::optional<ContextExplanation> VocabularyStore::cachedExplanation(const std::string& key) const {
    try {
        const auto rows =
            announcingFailure([&] { return db.query(VocabularySQL::cachedExplanation, {key}); });
        if (rows.empty()) return std::nullopt;
        const auto json = rows.front().text("json");
        if (!json) return std::nullopt;
        return nlohmann::json::parse(*json).get<ContextExplanation>();
    } catch (const SQLiteDB::Error&) {
        return std::nullopt;
    } catch (const nlohmann::json::exception&) {
        return std::nullopt;
    }
}

void VocabularyStore::cacheExplanation(const ContextExplanation& explanation,
                                       const std::string& key, Date now) {
    try {
        const std::string json = nlohmann::json(explanation).dump();
        announcingFailure([&] {
            return db.query(VocabularySQL::cacheExplanation, {key, json, secondsSince1970(now)});
        });
    } catch (const SQLiteDB::Error&) {
        // The answer is shown all the same; it will be asked for again.
    } catch (const nlohmann::json::exception&) {
        // It is no UTF-8.
    }
}

void VocabularyStore::copyTo(const std::string& newFile) const {
    db.query("VACUUM INTO ?", {newFile});
}

} // namespace tavik
