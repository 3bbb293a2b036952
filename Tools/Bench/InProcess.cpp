#include "InProcess.h"

#include "Dictionary/OfflineDictionary.h"
#include "Lookup/LookupService.h"
#include "Samples.h"
#include "Text/TextUtil.h"
#include "Text/Unicode.h"
#include "Vocabulary/VocabularyStore.h"

#include <algorithm>
#include <cstdio>
#include <numeric>
#include <set>
#include <utility>

namespace tavik {
namespace {

constexpr std::size_t passes = 5;
constexpr int exampleLimit = 3;
constexpr std::size_t slowestShown = 5;
constexpr int suggestionLimit = 10;
constexpr std::size_t longestPrefix = 6;

constexpr double entryBudget = 25;
constexpr double lemmaBudget = 100;
constexpr double lookupBudget = 1000;
constexpr double examplesBudget = 3000;
constexpr double sentenceBudget = 100;
constexpr double suggestionsBudget = 1000;

constexpr std::size_t textUnits = 10000;
constexpr std::size_t textRounds = 500;
constexpr std::size_t maxSentenceLength = 400;

struct Measurement {
    /// Microseconds, one value for each word.
    Samples samples;
    /// The words for which the operation was true.
    std::size_t hits = 0;
};

/// Passes over all words follow one another, so that what disturbs the machine for a moment does
/// not hit all passes of a word.
template<typename Operation>
Measurement measured(const std::vector<std::string>& words, Operation operation) {
    Measurement result;
    for (const std::string& word : words)
        if (operation(word)) ++result.hits;
    std::vector<Samples> perWord(words.size());
    for (std::size_t pass = 0; pass < passes; ++pass)
        for (std::size_t i = 0; i < words.size(); ++i) {
            const Stopwatch stopwatch;
            operation(words[i]);
            perWord[i].add(stopwatch.microseconds());
        }
    for (const Samples& word : perWord)
        result.samples.add(word.median());
    return result;
}

void printRow(const char* title, const Measurement& measurement) {
    const Samples& samples = measurement.samples;
    std::printf("%-22s%7zu of %-6zu %9.1f %9.1f %9.1f", title, measurement.hits, samples.size(),
                samples.median(), samples.p99(), samples.max());
}

void printMedianRow(const char* title, const Measurement& measurement, double budget) {
    printRow(title, measurement);
    printBudget("median", measurement.samples.median(), budget);
    std::printf("\n");
}

void printSlowest(const std::vector<std::string>& words, const Samples& samples) {
    std::vector<std::size_t> order(words.size());
    std::iota(order.begin(), order.end(), std::size_t{0});
    std::sort(order.begin(), order.end(),
              [&](std::size_t one, std::size_t other) { return samples[one] > samples[other]; });
    std::printf("  slowest:");
    for (std::size_t i = 0; i < std::min(slowestShown, order.size()); ++i)
        std::printf(" %s %.0f", words[order[i]].c_str(), samples[order[i]]);
    std::printf("\n");
}

/// Running English text of example sentences.
std::u16string runningText(const OfflineDictionary& dictionary,
                           const std::vector<std::string>& words) {
    std::u16string text;
    for (const std::string& word : words) {
        for (const ExampleSentence& example : dictionary.examples(word, exampleLimit))
            text += utf16FromUTF8(example.en) + u". ";
        if (text.size() > textUnits) break;
    }
    text.resize(textUnits);
    return text;
}

void reportSentences(const std::u16string& text) {
    const UTF16Range middle{static_cast<std::int64_t>(text.size() / 2), 1};
    const auto hasSentence = [&](const std::string&) {
        return TextUtil::sentence(text, middle, maxSentenceLength).has_value();
    };
    printMedianRow("sentence, 10,000 units",
                   measured(std::vector<std::string>(textRounds), hasSentence), sentenceBudget);
}

/// The different beginnings of `length` bytes that longer words have.
std::vector<std::string> prefixes(const std::vector<std::string>& words, std::size_t length) {
    std::set<std::string> result;
    for (const std::string& word : words)
        if (word.size() > length) result.insert(word.substr(0, length));
    return {result.begin(), result.end()};
}

void reportSuggestions(const OfflineDictionary& dictionary, const std::vector<std::string>& words) {
    const auto isFull = [&](const std::string& prefix) {
        return dictionary.suggestions(prefix, suggestionLimit).size() == suggestionLimit;
    };
    for (std::size_t length = 1; length <= longestPrefix; ++length) {
        const std::string title = "suggestions, " + std::to_string(length) + " typed";
        const std::vector<std::string> typed = prefixes(words, length);
        const Measurement suggestions = measured(typed, isFull);
        printRow(title.c_str(), suggestions);
        printBudget("p99", suggestions.samples.p99(), suggestionsBudget);
        std::printf("\n");
        printSlowest(typed, suggestions.samples);
    }
}

/// The whole lookup of the service, with a book that holds every second word.
void reportLookups(const OfflineDictionary& dictionary, const WordLists& words) {
    VocabularyStore book(":memory:");
    for (std::size_t i = 0; i < words.frequent.size(); i += 2)
        book.add(words.frequent[i], words.frequent[i], std::nullopt, words.frequent[i],
                 std::nullopt, std::nullopt, {}, currentDate());
    const LookupService service(&dictionary, book);
    const auto isSaved = [&](const std::string& word) {
        return service.lookup(word, std::nullopt, {}).alreadySaved;
    };
    for (const auto& [title, list] : {std::pair("lookup, whole", &words.frequent),
                                      {"lookup, whole, inflected", &words.inflected}}) {
        const Measurement lookups = measured(*list, isSaved);
        printRow(title, lookups);
        printBudget("p99", lookups.samples.p99(), lookupBudget);
        std::printf("\n");
    }
}

} // namespace

void reportInProcess(const std::string& dictionary, const WordLists& words) {
    const OfflineDictionary opened(dictionary);
    const auto hasEntry = [&](const std::string& word) { return opened.entry(word).has_value(); };
    const auto isReduced = [&](const std::string& word) {
        return opened.lemma(word) != TextUtil::normalizeWord(word);
    };
    const auto hasExamples = [&](const std::string& word) {
        return !opened.examples(word, exampleLimit).empty();
    };

    printHeading("In process, µs; calls that were true", "   median       p99       max");
    printMedianRow("entry", measured(words.frequent, hasEntry), entryBudget);
    printMedianRow("lemma", measured(words.frequent, isReduced), lemmaBudget);
    printMedianRow("lemma, inflected", measured(words.inflected, isReduced), lemmaBudget);

    const Measurement examples = measured(words.frequent, hasExamples);
    printRow("examples", examples);
    printBudget("p99", examples.samples.p99(), examplesBudget);
    std::printf("\n");
    printSlowest(words.frequent, examples.samples);

    reportSuggestions(opened, words.frequent);
    reportLookups(opened, words);
    reportSentences(runningText(opened, words.frequent));

    printRow("entry, absent", measured(words.absent, hasEntry));
    std::printf("\n");
    printRow("lemma, absent", measured(words.absent, isReduced));
    std::printf("\n");
    printRow("examples, absent", measured(words.absent, hasExamples));
    std::printf("\n");
}

double meanEntryMicroseconds(const std::string& dictionary, const std::vector<std::string>& words) {
    const OfflineDictionary opened(dictionary);
    return measured(words, [&](const std::string& word) { return opened.entry(word).has_value(); })
        .samples.mean();
}

} // namespace tavik
