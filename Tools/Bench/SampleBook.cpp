#include "SampleBook.h"

#include "Learning/Card.h"
#include "Storage/SQLiteDB.h"
#include "TavikDict/BulkInsert.h"
#include "Vocabulary/VocabularyStore.h"

#include <algorithm>
#include <array>
#include <numeric>
#include <random>
#include <string_view>
#include <vector>

namespace tavik::SampleBook {
namespace {

constexpr double firstSaved = 1767225600;
constexpr double betweenSaves = 120;
constexpr double firstDue = firstSaved + 400 * secondsPerDay;
constexpr double betweenDues = 60;

constexpr const char* rareWord = "ubiquitous";

constexpr std::string_view consonants = "bcdfglmnprst";
constexpr std::string_view vowels = "aeio";
constexpr std::array endings{"", "ty", "ment", "tion", "ous"};

constexpr std::array commonWords{"the",     "people",  "of",     "often",    "with",  "small",
                                 "about",   "between", "after",  "village",  "and",   "story",
                                 "would",   "never",   "by",     "mountain", "light", "because",
                                 "through", "letter",  "answer", "to",       "quiet", "when",
                                 "morning", "again",   "every",  "their",    "from",  "language"};

constexpr std::array glosses{"n. 坚持不懈, 执著",
                             "vt. 使…加剧, 使恶化 vi. 恶化",
                             "a. 无所不在的, 普遍存在的",
                             "n. 敏锐, 洞察力; 尖刻",
                             "vi. 犹豫, 踌躇",
                             "a. 短暂的, 转瞬即逝的 n. 短命的东西",
                             "n. 矛盾心理",
                             "ad. 勉强地, 不情愿地"};

std::string nextSyllable(std::size_t& number) {
    const char vowel = vowels[number % vowels.size()];
    number /= vowels.size();
    const char consonant = consonants[number % consonants.size()];
    number /= consonants.size();
    return {consonant, vowel};
}

/// Different for every index below `maxWords`: its first three syllables are.
std::string lemma(std::size_t index, std::size_t words) {
    if (index == words / 2) return rareWord;
    // So that neighbours in the file are not neighbours in the alphabet.
    constexpr std::size_t stride = 7919;
    std::size_t number = index * stride % maxWords;
    std::string word;
    for (int syllable = 0; syllable < 3; ++syllable)
        word += nextSyllable(number);
    return word + endings.at(index % endings.size());
}

class Writer {
public:
    Writer(SQLiteDB& db, std::size_t words) : db(db), random(words) {
        for (std::size_t index = 0; index < words; ++index)
            lemmas.push_back(lemma(index, words));
    }

    void write() {
        writeWords();
        writeCards();
        writeEncounters();
    }

private:
    static SQLiteDB::Value idOf(std::size_t index) { return static_cast<std::int64_t>(index) + 1; }

    static double savedAt(std::size_t index) {
        return firstSaved + static_cast<double>(index) * betweenSaves;
    }

    template<typename Choices>
    std::string oneOf(const Choices& choices) {
        return choices.at(random() % choices.size());
    }

    double below(double bound) { return static_cast<double>(random() >> 11) * 0x1p-53 * bound; }

    void writeWords() {
        BulkInsert insert(db, "INSERT INTO word (id, lemma, headword, phonetic, brief, created_at)",
                          6);
        for (std::size_t index = 0; index < lemmas.size(); ++index)
            insert.add({idOf(index), lemmas[index], lemmas[index], "ˈ" + lemmas[index] + "əs",
                        oneOf(glosses), savedAt(index)});
        insert.finish();
    }

    void writeCards() {
        std::vector<std::size_t> ranks(lemmas.size());
        std::iota(ranks.begin(), ranks.end(), std::size_t{0});
        std::shuffle(ranks.begin(), ranks.end(), random);
        BulkInsert insert(db,
                          "INSERT INTO card (word_id, state, due, stability, difficulty, reps, "
                          "lapses, last_review)",
                          8);
        for (std::size_t index = 0; index < lemmas.size(); ++index) {
            const double due = firstDue + static_cast<double>(ranks[index]) * betweenDues;
            const double stability = 1 + below(100);
            insert.add({idOf(index), std::string(rawValue(CardState::review)), due, stability,
                        1 + below(9), static_cast<std::int64_t>(1 + random() % 20),
                        static_cast<std::int64_t>(random() % 4), due - stability * secondsPerDay});
        }
        insert.finish();
    }

    /// Every word is met once before any is met again, as in life: the encounters of a word do not
    /// lie side by side in the file.
    void writeEncounters() {
        BulkInsert insert(db,
                          "INSERT INTO encounter (word_id, selection, sentence, context_meaning, "
                          "source_app, source_bundle_id, url, seen_at)",
                          8);
        for (std::size_t round = 0; round < encountersPerWord; ++round)
            for (std::size_t index = 0; index < lemmas.size(); ++index)
                insert.add(encounter(index, round));
        insert.finish();
    }

    std::vector<SQLiteDB::Value> encounter(std::size_t index, std::size_t round) {
        const std::string& word = lemmas[index];
        SQLiteDB::Value meaning = SQLiteDB::Null{};
        if (round == 0) meaning = "这里指" + oneOf(glosses);
        return {idOf(index),
                word,
                sentence(word),
                meaning,
                "Firefox",
                "org.mozilla.firefox",
                "https://en.wikipedia.org/wiki/" + word + "?section=" + std::to_string(round),
                savedAt(index + round * lemmas.size())};
    }

    std::string sentence(const std::string& word) {
        constexpr std::size_t shortest = 60;
        constexpr std::size_t longestCommonWord = 8;
        constexpr std::size_t variety = 120 - shortest - longestCommonWord;
        const std::size_t length = shortest + random() % variety;
        std::string text = "Once";
        const auto goOn = [&](std::size_t end) {
            while (text.size() < end)
                text += ' ' + oneOf(commonWords);
        };
        goOn(length / 2);
        text += ' ' + word;
        goOn(length - 1);
        return text + '.';
    }

    SQLiteDB& db;
    std::mt19937_64 random;
    std::vector<std::string> lemmas;
};

} // namespace

void write(const std::string& path, std::size_t words) {
    const VocabularyStore store(path);
    SQLiteDB db(path, false);
    db.transaction([&] { Writer(db, words).write(); });
}

Date momentOfDue(std::size_t cards) {
    return dateFromSeconds(firstDue + (static_cast<double>(cards) - 0.5) * betweenDues);
}

} // namespace tavik::SampleBook
