#include "BookOperations.h"

#include "BareBook.h"
#include "Learning/FSRSScheduler.h"
#include "SampleBook.h"
#include "Samples.h"
#include "Vocabulary/VocabularyStore.h"

#include <algorithm>
#include <cstdio>
#include <stdexcept>
#include <utility>

namespace tavik {
namespace {

constexpr std::size_t dueCards = 500;
constexpr std::size_t singleCalls = 2000;
constexpr std::size_t changes = 300;
constexpr double desiredRetention = 0.9;
constexpr double itemsBudget = 1.3;

/// Long lists are read less often.
std::size_t roundsFor(std::size_t words) {
    constexpr std::size_t wordsAltogether = 200000;
    constexpr std::size_t fewest = 5;
    constexpr std::size_t most = 41;
    return std::clamp(wordsAltogether / words, fewest, most);
}

/// The book's file, with what SQLite puts beside it, until the end of the scope.
class ScratchFile {
public:
    explicit ScratchFile(std::filesystem::path path) : path(std::move(path)) { remove(); }

    ~ScratchFile() { remove(); }

    ScratchFile(const ScratchFile&) = delete;
    ScratchFile& operator=(const ScratchFile&) = delete;

    const std::filesystem::path path;

private:
    void remove() const {
        std::error_code ignored;
        for (const char* const ending : {"", "-wal", "-shm"})
            std::filesystem::remove(path.string() + ending, ignored);
    }
};

void expect(bool isRight, const char* what) {
    if (!isRight) throw std::runtime_error(std::string("wrong answer: ") + what);
}

void printRow(const char* title, const Samples& samples) {
    std::printf("%-28s%11zu %12.1f %12.1f %12.1f", title, samples.size(), samples.median(),
                samples.p99(), samples.max());
}

void printLine(const char* title, const Samples& samples) {
    printRow(title, samples);
    std::printf("\n");
}

template<typename Operation>
double microsecondsOf(Operation operation) {
    const Stopwatch stopwatch;
    operation();
    return stopwatch.microseconds();
}

/// `operation` is called with 0, 1, … and the first call does not count.
template<typename Operation>
Samples measured(std::size_t calls, Operation operation) {
    Samples samples;
    operation(std::size_t{0});
    for (std::size_t call = 1; call <= calls; ++call)
        samples.add(microsecondsOf([&] { operation(call); }));
    return samples;
}

bool areSame(const Word& own, const BareItem& bare) {
    return own.id == bare.id && own.lemma == bare.lemma && own.headword == bare.headword
           && own.phonetic == bare.phonetic && own.brief == bare.brief
           && secondsSince1970(own.createdAt) == bare.createdAt;
}

bool areSame(const Card& own, const BareItem& bare) {
    return own.wordID == bare.wordID && rawValue(own.state) == bare.state
           && secondsSince1970(own.due) == bare.due && own.stability == bare.stability
           && own.difficulty == bare.difficulty && own.reps == bare.reps
           && own.lapses == bare.lapses
           && secondsSince1970(own.lastReview.value_or(Date())) == bare.lastReview;
}

bool areSame(const Encounter& own, const BareEncounter& bare) {
    return own.id == bare.id && own.wordID == bare.wordID && own.selection == bare.selection
           && own.sentence.value_or("") == bare.sentence
           && own.contextMeaning.value_or("") == bare.contextMeaning
           && own.source.appName.value_or("") == bare.appName
           && own.source.bundleID.value_or("") == bare.bundleID
           && own.source.url.value_or("") == bare.url
           && secondsSince1970(own.seenAt) == bare.seenAt;
}

bool areSame(const VocabItem& own, const BareItem& bare) {
    return areSame(own.word, bare) && areSame(own.card, bare)
           && own.encounterCount == bare.encounterCount && own.latest.has_value()
           && areSame(*own.latest, bare.latest);
}

class Operations {
public:
    Operations(const std::string& path, std::size_t words)
        : words(words), store(path), bare(path) {}

    void report() {
        printHeading("µs", "calls       median          p99          max");
        reportAllItems();
        reportLists();
        reportSingleCalls();
        reportChanges();
    }

private:
    /// Store and bare loop take turns at going first, so that what disturbs the machine for a
    /// moment hits both, and neither always finds what the other left in the caches.
    void reportAllItems() {
        items = store.items("");
        const auto bareItems = bare.items();
        expect(items.size() == words
                   && std::equal(
                       items.begin(), items.end(), bareItems.begin(), bareItems.end(),
                       [](const auto& own, const auto& other) { return areSame(own, other); }),
               "items(\"\") and the bare loop differ");
        Samples own;
        Samples other;
        Samples ratios;
        const auto timeOwn = [&] { own.add(microsecondsOf([&] { store.items(""); })); };
        const auto timeBare = [&] { other.add(microsecondsOf([&] { bare.items(); })); };
        for (std::size_t round = 0; round < roundsFor(words); ++round) {
            if (round % 2 == 0) timeBare();
            timeOwn();
            if (round % 2 != 0) timeBare();
            ratios.add(own[round] / other[round]);
        }
        printLine("items(\"\")", own);
        printLine("  bare loop", other);
        std::printf("%-28s%24.2f", "  ratio", ratios.median());
        printBudget("median", ratios.median(), itemsBudget);
        std::printf("\n");
    }

    void reportLists() {
        const Date now = SampleBook::momentOfDue(dueCards);
        expect(store.items(SampleBook::rareText).size() == 1, "items(\"ubiq\")");
        expect(store.dueItems(now, dueCards).size() == dueCards, "dueItems(500)");
        printLine("items(\"ubiq\")", measured(roundsFor(words), [&](std::size_t) {
                      store.items(SampleBook::rareText);
                  }));
        printLine("dueItems(500)",
                  measured(roundsFor(words), [&](std::size_t) { store.dueItems(now, dueCards); }));
    }

    void reportSingleCalls() {
        const Date now = SampleBook::momentOfDue(dueCards);
        expect(store.item(itemAt(0).word.id) == itemAt(0), "item(id)");
        expect(store.wordIDForLemma(itemAt(1).word.lemma) == itemAt(1).word.id, "wordIDForLemma");
        expect(std::cmp_equal(store.dueCount(now), dueCards), "dueCount");
        expect(std::cmp_equal(store.wordCount(), words), "wordCount");
        printLine("item(id)", measured(singleCalls, [&](std::size_t call) {
                      store.item(itemAt(call).word.id);
                  }));
        printLine("wordIDForLemma", measured(singleCalls, [&](std::size_t call) {
                      store.wordIDForLemma(itemAt(call).word.lemma);
                  }));
        printLine("dueCount", measured(singleCalls, [&](std::size_t) { store.dueCount(now); }));
        printLine("wordCount", measured(roundsFor(words), [&](std::size_t) { store.wordCount(); }));
    }

    void reportChanges() {
        const auto scheduler = FSRSScheduler::standard(desiredRetention);
        printLine("add", measured(changes, [&](std::size_t call) { add(call); }));
        printLine("review", measured(changes, [&](std::size_t call) {
                      store.review(itemAt(call).word.id, Rating::good, scheduler, currentDate());
                  }));
        printLine("delete_",
                  measured(changes, [&](std::size_t call) { store.delete_(added.at(call)); }));
        expect(std::cmp_equal(store.wordCount(), words), "delete_");
    }

    /// Calls one after the other do not hit neighbours in the file.
    const VocabItem& itemAt(std::size_t call) const {
        constexpr std::size_t stride = 7919;
        return items[call * stride % items.size()];
    }

    void add(std::size_t call) {
        DictEntry entry;
        entry.phonetic = "ˈmeʒə";
        entry.translations = {"n. 量度, 措施; 尺寸", "vt. 测量"};
        const SourceInfo source{"Firefox", "org.mozilla.firefox",
                                "https://en.wikipedia.org/wiki/Measurement"};
        const std::string lemma = "measured word " + std::to_string(call);
        added.push_back(
            store
                .add(lemma, lemma, entry, lemma,
                     "Once more a sentence of common length in which the " + lemma + " was met.",
                     std::nullopt, source, currentDate())
                .wordID);
    }

    std::size_t words;
    VocabularyStore store;
    BareBook bare;
    std::vector<VocabItem> items;
    std::vector<std::int64_t> added;
};

} // namespace

void reportBookOperations(const std::filesystem::path& directory, std::size_t words) {
    const ScratchFile file(directory / ("vocabulary-" + std::to_string(words) + ".sqlite"));
    const Stopwatch stopwatch;
    SampleBook::write(file.path, words);
    std::printf("\n%zu words, %zu encounters, %.1f MB, written in %.1f s\n", words,
                words * SampleBook::encountersPerWord,
                static_cast<double>(std::filesystem::file_size(file.path)) / 1e6,
                stopwatch.microseconds() / 1e6);
    Operations(file.path, words).report();
}

} // namespace tavik
