#include "TavikDict/BaseForms.h"

#include "Text/Unicode.h"

#include <algorithm>
#include <string_view>
#include <unordered_set>

namespace tavik {
namespace {

/// Tag counts below this are chance.
constexpr std::int64_t wellAttested = 3;

const std::unordered_map<std::string_view, std::string_view> auxiliaryForms{
    {"am", "be"},   {"are", "be"},   {"is", "be"},    {"was", "be"},   {"were", "be"},
    {"been", "be"}, {"being", "be"}, {"has", "have"}, {"had", "have"}, {"having", "have"},
    {"does", "do"}, {"did", "do"},   {"done", "do"},  {"doing", "do"},
};

const std::unordered_set<std::string_view> ownBaseForms{
    "i",     "me",        "my",      "mine",   "myself",  "we",       "us",         "our",
    "ours",  "ourselves", "you",     "your",   "yours",   "yourself", "yourselves", "he",
    "him",   "his",       "himself", "she",    "her",     "hers",     "herself",    "it",
    "its",   "itself",    "they",    "them",   "their",   "theirs",   "themselves", "this",
    "that",  "these",     "those",   "who",    "whom",    "whose",    "which",      "what",
    "where", "when",      "why",     "how",    "a",       "an",       "the",        "not",
    "no",    "nor",       "and",     "or",     "but",     "if",       "as",         "at",
    "by",    "in",        "on",      "of",     "to",      "for",      "from",       "with",
    "than",  "then",      "thus",    "so",     "such",    "some",     "any",        "all",
    "both",  "each",      "every",   "either", "neither", "other",    "others",     "another",
    "can",   "could",     "may",     "might",  "shall",   "should",   "will",       "would",
    "must",  "ought",     "during",  "always", "perhaps", "this",     "less",       "lest",
    "news",  "species",   "series",  "means"};

} // namespace

BaseForms::BaseForms(const std::vector<Headword>& headwords, const WordNet& wordNet,
                     const LemmaList& lemmaList)
    : wordNet(wordNet), lemmaList(lemmaList) {
    for (const Headword& headword : headwords) {
        const std::string word = lowercased(headword.word);
        this->headwords.try_emplace(word, Known{headword.rank(),
                                                lowercased(exchangeForm(headword.exchange, "0")),
                                                word != headword.word});
    }
}

const BaseForms::Known* BaseForms::known(const std::string& word) const {
    const auto found = headwords.find(word);
    return found == headwords.end() ? nullptr : &found->second;
}

std::optional<std::string> BaseForms::baseForm(const std::string& word) const {
    if (const auto fixed = auxiliaryForms.find(word); fixed != auxiliaryForms.end())
        return std::string(fixed->second);
    if (ownBaseForms.count(word) > 0) return std::nullopt;

    const Known* const headword = known(word);
    if (headword != nullptr && !headword->ownBase.empty()) {
        if (headword->ownBase == word) return std::nullopt;
        if (isPlausible(word, headword->ownBase)) return headword->ownBase;
    }

    const auto bases = wordNet.bases(word);
    if (bases.empty() && !wordNet.defines(word)) {
        auto base = lemmaList.lemma(word);
        if (base && base->size() < 2) return std::nullopt;
        return base;
    }
    auto base = weighed(word, bases);
    if (base && isGuarded(word, *base)) return std::nullopt;
    return base;
}

bool BaseForms::isPlausible(const std::string& word, const std::string& base) const {
    if (base.size() < 2 || known(base) == nullptr) return false;
    const auto bases = wordNet.bases(word);
    if (!wordNet.defines(word))
        return wordNet.defines(base) || bases.empty()
               || std::any_of(bases.begin(), bases.end(), [&](const WordNet::Base& candidate) {
                      return candidate.word == base;
                  });
    if (!wordNet.defines(base)) return false;
    std::int64_t baseCount = -1;
    for (const WordNet::Base& candidate : bases)
        if (candidate.word == base)
            baseCount = std::max(baseCount, wordNet.tagCount(base, candidate.partOfSpeech));
    if (baseCount < 0) baseCount = wordNet.tagCount(base);
    return wordNet.tagCount(word) < baseCount;
}

std::optional<std::string> BaseForms::weighed(const std::string& word,
                                              const std::vector<WordNet::Base>& bases) const {
    // In halves, so that of equal counts the word itself wins.
    std::int64_t highest = wordNet.defines(word) ? 4 * wordNet.tagCount(word) + 1 : -1;
    std::optional<std::string> best;
    for (const WordNet::Base& base : bases) {
        const std::int64_t score = 2 * wordNet.tagCount(base.word, base.partOfSpeech);
        if (base.word.size() < 2 || score <= highest) continue;
        highest = score;
        best = base.word;
    }
    return best;
}

bool BaseForms::isGuarded(const std::string& word, const std::string& base) const {
    const Known* const headword = known(word);
    if (headword == nullptr || headword->rank == 0 || !headword->ownBase.empty()) return false;
    const Known* const baseWord = known(base);
    return wordNet.defines(word) || wordNet.tagCount(base) < wellAttested || word.size() <= 3
           || headword->isCapitalised || (baseWord != nullptr && baseWord->isCapitalised);
}

} // namespace tavik
