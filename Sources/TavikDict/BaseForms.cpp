#include "TavikDict/BaseForms.h"

#include "TavikDict/ClosedClasses.h"
#include "Text/Unicode.h"

#include <algorithm>
#include <array>

namespace tavik {
namespace {

using PartOfSpeech = WordNet::PartOfSpeech;

/// Tag counts below this are chance.
constexpr std::int64_t wellAttested = 3;
constexpr std::size_t shortWord = 3;

constexpr std::array<PartOfSpeech, WordNet::partsOfSpeech> allPartsOfSpeech{
    PartOfSpeech::noun, PartOfSpeech::verb, PartOfSpeech::adjective, PartOfSpeech::adverb};

bool contains(std::string_view text, std::string_view piece) {
    return text.find(piece) != std::string_view::npos;
}

bool isPersonalName(std::string_view translation) {
    constexpr std::array<std::string_view, 4> marks{"姓氏", "人名", "男子名", "女子名"};
    return std::any_of(marks.begin(), marks.end(),
                       [&](std::string_view mark) { return contains(translation, mark); });
}

/// The American spelling of British endings; WordNet counts both under the American one.
std::string americanSpelling(const std::string& word) {
    constexpr std::array<std::pair<std::string_view, std::string_view>, 9> spellings{
        {{"our", "or"},
         {"isa", "iza"},
         {"ise", "ize"},
         {"isi", "izi"},
         {"yse", "yze"},
         {"ysi", "yzi"},
         {"lled", "led"},
         {"lling", "ling"},
         {"tre", "ter"}}};
    std::string american = word;
    for (const auto& [british, replacement] : spellings)
        american = replacingAll(american, british, replacement);
    return american;
}

/// Whether words of a part of speech take the inflections of a key of `DictEntry::exchange`.
bool canInflect(PartOfSpeech partOfSpeech, char key) {
    switch (key) {
    case 's':
        return partOfSpeech == PartOfSpeech::noun;
    case 'p':
    case 'd':
    case 'i':
    case '3':
        return partOfSpeech == PartOfSpeech::verb;
    case 'r':
    case 't':
        return partOfSpeech == PartOfSpeech::adjective || partOfSpeech == PartOfSpeech::adverb;
    default:
        return true;
    }
}

bool canInflect(PartOfSpeech partOfSpeech, std::string_view keys) {
    return keys.empty() || std::any_of(keys.begin(), keys.end(), [&](char key) {
               return canInflect(partOfSpeech, key);
           });
}

/// By how much the count of a noun that looks like a form of a verb is raised against the verb's,
/// which is counted in all its forms: «the building» against «to build».
std::int64_t weightAgainstVerb(std::string_view inflections) {
    if (contains(inflections, "s")) return 1;
    if (contains(inflections, "i") || contains(inflections, "3")) return 4;
    return 2;
}

} // namespace

BaseForms::BaseForms(const std::vector<Headword>& headwords, const WordNet& wordNet,
                     const LemmaList& lemmaList)
    : wordNet(wordNet), lemmaList(lemmaList) {
    for (const Headword& headword : headwords) {
        const std::string word = lowercased(headword.word);
        Known known;
        known.rank = headword.rank();
        known.isCapitalised = word != headword.word;
        known.isPersonalName = isPersonalName(headword.translation);
        known.statedBase = lowercased(exchangeForm(headword.exchange, "0"));
        known.inflections = exchangeForm(headword.exchange, "1");
        this->headwords.try_emplace(word, std::move(known));
    }
}

const BaseForms::Known* BaseForms::known(const std::string& word) const {
    const auto found = headwords.find(word);
    return found == headwords.end() ? nullptr : &found->second;
}

std::optional<std::string> BaseForms::baseForm(const std::string& word) const {
    if (const auto closed = closedClassBase(word)) {
        if (closed->empty()) return std::nullopt;
        return std::string(*closed);
    }
    const Known* const headword = known(word);
    const std::string stated = headword == nullptr ? std::string() : headword->statedBase;
    const auto bases = wordNet.bases(word);
    if (stated == word && !wordNet.isIrregular(word)) return std::nullopt;
    if (!stated.empty() && stated != word) {
        if (acceptsStatedBase(word, *headword)) return stated;
        // A base that WordNet knows was refused for what the word is; any other one was misspelt.
        if (defines(stated)) return std::nullopt;
    }
    auto base = weighed(word, bases, stated.empty() || stated == word ? 2 : 1);
    if (stated.empty() && bases.empty() && !wordNet.defines(word)) base = lemmaList.lemma(word);
    if (!base || base->size() < 2 || isGuarded(word, *base)) return std::nullopt;
    return base;
}

bool BaseForms::acceptsStatedBase(const std::string& word, const Known& headword) const {
    const std::string& base = headword.statedBase;
    if (base.size() < 2 || known(base) == nullptr) return false;
    if (wordNet.isIrregularPlural(word, base)) return true;
    const auto baseCount = inflectingCount(base, headword.inflections);
    if (!baseCount) return isBeyondWordNet(word, headword);
    if (base.size() < shortWord && *baseCount < wellAttested) return false;
    if (looksLikeName(word, headword, *baseCount)) return false;
    const bool isPlural = contains(headword.inflections, "s");
    return !wordNet.defines(word) || (isPlural && wordNet.shareMeaning(word, base))
           || !isBetterKnown(word, headword.inflections, *baseCount);
}

std::optional<std::int64_t> BaseForms::inflectingCount(const std::string& base,
                                                       const std::string& inflections) const {
    std::optional<std::int64_t> count;
    for (const PartOfSpeech part : allPartsOfSpeech)
        if (canInflect(part, inflections) && defines(base, part))
            count = std::max(count.value_or(0), tagCount(base, part));
    return count;
}

bool BaseForms::isBeyondWordNet(const std::string& word, const Known& headword) const {
    return !defines(headword.statedBase) && !defines(word) && wordNet.bases(word).empty()
           && headword.rank == 0;
}

bool BaseForms::looksLikeName(const std::string& word, const Known& headword,
                              std::int64_t baseCount) const {
    if (wordNet.isOnlyName(word) && wordNet.nameTagCount(word) > baseCount) return true;
    if (baseCount >= wellAttested) return false;
    return headword.isPersonalName || wordNet.isOnlyName(word);
}

bool BaseForms::isBetterKnown(const std::string& word, const std::string& inflections,
                              std::int64_t baseCount) const {
    const auto is = [&](std::string_view keys) {
        return inflections.find_first_of(keys) != std::string::npos;
    };
    const std::int64_t asNoun = tagCount(word, PartOfSpeech::noun);
    const std::int64_t asVerb = tagCount(word, PartOfSpeech::verb);
    if (is("rt") && (asNoun > 0 || asVerb > 0)) return true;
    const bool isUncountedGerund =
        is("i") && baseCount == 0 && wordNet.defines(word, PartOfSpeech::noun);
    return isUncountedGerund || tagCount(word) > baseCount
           || weightAgainstVerb(inflections) * asNoun > baseCount;
}

std::optional<std::string> BaseForms::weighed(const std::string& word,
                                              const std::vector<WordNet::Base>& bases,
                                              std::int64_t ownWeight) const {
    if (wordNet.isOnlyName(word)) return std::nullopt;
    // Doubled, so that of equal counts the word itself wins.
    std::int64_t highest = wordNet.defines(word) ? 2 * ownWeight * tagCount(word) + 1 : -1;
    std::optional<std::string> best;
    for (const WordNet::Base& base : bases) {
        const std::int64_t score = 2 * tagCount(base.word, base.partOfSpeech);
        if (score <= highest) continue;
        highest = score;
        best = base.word;
    }
    return best;
}

bool BaseForms::isGuarded(const std::string& word, const std::string& base) const {
    const Known* const headword = known(word);
    if (headword == nullptr || headword->rank == 0 || !headword->statedBase.empty()) return false;
    const Known* const baseWord = known(base);
    return wordNet.defines(word) || wordNet.tagCount(base) < wellAttested
           || word.size() <= shortWord || headword->isCapitalised
           || (baseWord != nullptr && baseWord->isCapitalised);
}

bool BaseForms::defines(const std::string& word) const {
    return wordNet.defines(word) || wordNet.defines(americanSpelling(word));
}

bool BaseForms::defines(const std::string& word, PartOfSpeech partOfSpeech) const {
    return wordNet.defines(word, partOfSpeech)
           || wordNet.defines(americanSpelling(word), partOfSpeech);
}

std::int64_t BaseForms::tagCount(const std::string& word) const {
    return std::max(wordNet.tagCount(word), wordNet.tagCount(americanSpelling(word)));
}

std::int64_t BaseForms::tagCount(const std::string& word, PartOfSpeech partOfSpeech) const {
    return std::max(wordNet.tagCount(word, partOfSpeech),
                    wordNet.tagCount(americanSpelling(word), partOfSpeech));
}

} // namespace tavik
