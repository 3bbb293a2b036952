#include "TavikDict/CommonWords.h"

#include "Text/CharacterClasses.h"
#include "Text/Unicode.h"

#include <algorithm>
#include <unordered_map>

namespace tavik {
namespace {

constexpr std::size_t longestPhrase = 5;
/// What a rank is multiplied by that only the British National Corpus gives, to a word that no word
/// list names. Most are names, abbreviations and sounds such as «erm».
constexpr std::int64_t oddWordFactor = 10;
/// The rank of what the examples hold once. A word that they hold n times has about the n-th part
/// of the rank of one that they hold once; in 300,000 words of examples that would be 30,000. It is
/// more, for many phrases are mere words side by side, such as «in this».
constexpr std::int64_t rankOfOneUse = 100000;

/// The corpus takes the end of «don't» for a word.
constexpr std::string_view wordPart = "n't";

/// The rank by the corpora, or 0.
std::int64_t corpusRank(const Headword& headword) {
    if (headword.word == wordPart) return 0;
    const bool isListed = headword.collins.value_or(0) > 0 || headword.oxford.value_or(0) > 0
                          || !headword.tag.empty();
    if (isListed) return headword.rank();
    return headword.frq > 0 ? headword.frq : headword.bnc * oddWordFactor;
}

/// Such headwords are often mere words side by side.
bool isTranslatedByTheWeb(const Headword& headword) {
    return trimmed(headword.translation, isWhiteSpace).starts_with("[网络]");
}

bool isSpace(char32_t scalar) {
    return scalar == ' ';
}

bool endsClause(char32_t scalar) {
    return !isLetter(scalar) && scalar != ' ' && scalar != '\'' && scalar != '-';
}

/// Counts in running text those words and phrases that it was told of.
class UseCounter {
public:
    explicit UseCounter(const LemmaTable& lemmas) : lemmas(lemmas) {}

    /// `word` in lower case.
    void watch(std::string word) {
        if (split(word, isSpace).size() <= longestPhrase) uses.emplace(std::move(word), 0);
    }

    void read(std::string_view sentence) {
        const std::string lower = lowercased(sentence);
        for (const std::string_view clause : split(lower, endsClause))
            readClause(split(clause, isSpace));
    }

    std::int64_t count(const std::string& word) const {
        const auto found = uses.find(word);
        return found == uses.end() ? 0 : found->second;
    }

private:
    void readClause(const std::vector<std::string_view>& words) {
        for (std::size_t first = 0; first < words.size(); ++first) {
            std::string asWritten;
            std::string inBaseForm;
            const std::size_t end = std::min(words.size(), first + longestPhrase);
            for (std::size_t last = first; last < end; ++last) {
                if (last > first) {
                    asWritten += ' ';
                    inBaseForm += ' ';
                }
                asWritten += words[last];
                inBaseForm += baseForm(words[last]);
                addUse(asWritten);
                if (inBaseForm != asWritten) addUse(inBaseForm);
            }
        }
    }

    std::string_view baseForm(std::string_view word) const {
        const auto base = lemmas.find(word);
        return base == lemmas.end() ? word : std::string_view(base->second);
    }

    void addUse(const std::string& word) {
        const auto found = uses.find(word);
        if (found != uses.end()) ++found->second;
    }

    const LemmaTable& lemmas;
    std::unordered_map<std::string, std::int64_t> uses;
};

} // namespace

std::vector<CommonWord> commonWords(const std::vector<Headword>& headwords,
                                    const LemmaTable& lemmas,
                                    const std::vector<ExampleSentence>& examples) {
    UseCounter counter(lemmas);
    for (const Headword& headword : headwords)
        if (corpusRank(headword) == 0 && !isTranslatedByTheWeb(headword))
            counter.watch(lowercased(headword.word));
    for (const ExampleSentence& example : examples)
        counter.read(example.en);

    std::vector<CommonWord> result;
    for (const Headword& headword : headwords) {
        std::int64_t rank = corpusRank(headword);
        if (rank == 0) {
            const std::string word = lowercased(headword.word);
            const std::int64_t uses = lemmas.contains(word) ? 0 : counter.count(word);
            if (uses > 0) rank = std::max<std::int64_t>(rankOfOneUse / uses, 1);
        }
        if (rank > 0) result.push_back({headword.word, rank});
    }
    return result;
}

} // namespace tavik
