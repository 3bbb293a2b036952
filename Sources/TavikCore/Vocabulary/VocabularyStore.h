#pragma once

#include "Base/Date.h"
#include "Dictionary/DictionaryRecords.h"
#include "Explanation/ExplanationRecords.h"
#include "Learning/Scheduler.h"
#include "Storage/SQLiteDB.h"
#include "Vocabulary/VocabularyRecords.h"

#include <cstdint>
#include <functional>
#include <mutex>
#include <optional>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

namespace tavik {

/// The user's vocabulary book: the only owner of its file.
///
/// Any thread may call, and several programs may have the book open at once.
/// 1. A save or a review is one transaction: other threads and programs see all of it or nothing,
///    and it is on the disk when the call returns.
/// 2. A call that throws has changed nothing. What throws is a `SQLiteDB::Error`.
/// 3. After a change is committed, and with no lock held, `onChange` is called on the thread that
///    made it.
/// 4. `onFailure` is called, likewise, for every failure to read or write the book, also where the
///    call itself does not throw; but not for that of `copyTo`, which may be the new file's.
class VocabularyStore {
public:
    struct AddResult {
        std::int64_t wordID = 0;
        /// Whether the word was not in the book before.
        bool isNewWord = false;

        bool operator==(const AddResult&) const = default;
    };

    /// Opens the book, creating it where there is none. Throws `SQLiteDB::Error`, and
    /// `EmptiedBookError` when opening the file would destroy what is left of it.
    explicit VocabularyStore(const std::string& path);

    /// Replace the callbacks; they must not throw.
    void setOnChange(std::function<void()> callback);
    void setOnFailure(std::function<void(const SQLiteDB::Error&)> callback);

    /// Saves a word, with a card that is due at once, and the sentence it was met in. A word that
    /// is in the book already keeps its row and card; a sentence that is there is not repeated.
    AddResult add(const std::string& lemma, const std::string& headword,
                  const std::optional<DictEntry>& entry, const std::string& selection,
                  const std::optional<std::string>& sentence,
                  const std::optional<std::string>& contextMeaning, const SourceInfo& source,
                  Date now);

    /// Applies a rating to the word's card and logs it; the new card. Throws when there is no card.
    Card review(std::int64_t wordID, Rating rating, const Scheduler& scheduler, Date now);

    /// Removes a word with its encounters, card and log. No such word is no error.
    void delete_(std::int64_t wordID);

    std::optional<Card> card(std::int64_t wordID) const;

    /// The word filed under `lemma`, up to ASCII case. Never throws.
    std::optional<std::int64_t> wordIDForLemma(const std::string& lemma) const;

    /// The words whose lemma, headword, gloss or sentences contain `search`, newest first; all
    /// words when it is blank. "%" and "_" in it stand for any text and any character.
    std::vector<VocabItem> items(std::string_view search) const;

    /// The words due at `at`, most overdue first.
    std::vector<VocabItem> dueItems(Date at, std::int64_t limit) const;

    std::optional<VocabItem> item(std::int64_t wordID) const;

    /// Newest first.
    std::vector<Encounter> encounters(std::int64_t wordID) const;

    /// Counts never throw; a book that cannot be read counts 0.
    std::int64_t wordCount() const;
    std::int64_t dueCount(Date at) const;
    std::int64_t reviewCount(Date since) const;

    /// The explanation cache is a convenience: where it fails, it reads as nothing.
    std::optional<ContextExplanation> cachedExplanation(const std::string& key) const;
    void cacheExplanation(const ContextExplanation& explanation, const std::string& key, Date now);

    /// Writes all of the book as it is at this moment into a new file, while others go on writing.
    void copyTo(const std::string& newFile) const;

private:
    std::vector<VocabItem> itemsWhere(const std::string& clause,
                                      const std::vector<SQLiteDB::Value>& args) const;
    std::int64_t insertWord(const std::string& lemma, const std::string& headword,
                            const std::optional<DictEntry>& entry, Date now);
    void save(const Card& card);
    std::optional<Card> storedCard(std::int64_t wordID) const;
    void announceChange();
    void announce(const SQLiteDB::Error& failure) const;
    std::int64_t count(const char* statement, const std::vector<SQLiteDB::Value>& args) const;

    /// Runs `body` and announces the failure with which it ends.
    template<typename Body>
    auto announcingFailure(Body body) const;

    mutable SQLiteDB db;
    mutable std::mutex callbackLock;
    std::function<void()> onChange;
    std::function<void(const SQLiteDB::Error&)> onFailure;
};

} // namespace tavik
