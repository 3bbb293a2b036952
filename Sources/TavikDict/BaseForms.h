#pragma once

#include "TavikDict/ECDICT.h"
#include "TavikDict/LemmaList.h"
#include "TavikDict/WordNet.h"

#include <optional>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

namespace tavik {

/// Decides under which base form an English word is filed: the one a teacher would name. The lemma
/// table, the dictionary's own base-form keys and the lemma column of the example index are all
/// made by this one decision.
///
/// 1. Closed classes have fixed answers: the forms of be, have and do, irregular comparatives, and
///    the words that only look inflected.
/// 2. The base form that the dictionary states holds if WordNet has such a word in a part of speech
///    that inflects that way, and the word is not a name, nor better known in its own right.
/// 3. Else the bases that WordNet's morphology allows compete with the word itself by tag count,
///    the word's own count doubled unless the dictionary states that it is an inflection.
/// 4. Where WordNet knows neither word nor base, the lemma list decides.
///
/// In 3 and 4 a headword with a corpus rank that the dictionary gives no base form is taken at its
/// word unless the base is well attested.
class BaseForms {
public:
    /// The last two arguments must outlive the object.
    BaseForms(const std::vector<Headword>& headwords, const WordNet& wordNet,
              const LemmaList& lemmaList);

    /// The base form of a lower-case word, or nothing for a word that is its own.
    std::optional<std::string> baseForm(const std::string& word) const;

private:
    struct Known {
        std::int64_t rank = 0;
        bool isCapitalised = false;
        /// Whether its translation says that it is a person's name.
        bool isPersonalName = false;
        std::string statedBase;
        /// The keys of the inflections that it is said to be, as in `DictEntry::exchange`.
        std::string inflections;
    };

    const Known* known(const std::string& word) const;
    bool acceptsStatedBase(const std::string& word, const Known& headword) const;
    /// The tag count of `base` as words count that take these inflections; nothing when WordNet has
    /// no such word.
    std::optional<std::int64_t> inflectingCount(const std::string& base,
                                                const std::string& inflections) const;
    /// Whether neither the word nor its stated base is known to WordNet, and the word is too rare
    /// to be a name that was taken for an inflection.
    bool isBeyondWordNet(const std::string& word, const Known& headword) const;
    bool looksLikeName(const std::string& word, const Known& headword,
                       std::int64_t baseCount) const;
    bool isBetterKnown(const std::string& word, const std::string& inflections,
                       std::int64_t baseCount) const;
    std::optional<std::string> weighed(const std::string& word,
                                       const std::vector<WordNet::Base>& bases,
                                       std::int64_t ownWeight) const;
    bool isGuarded(const std::string& word, const std::string& base) const;

    /// What WordNet says of a word under its British or its American spelling.
    bool defines(const std::string& word) const;
    bool defines(const std::string& word, WordNet::PartOfSpeech partOfSpeech) const;
    std::int64_t tagCount(const std::string& word) const;
    std::int64_t tagCount(const std::string& word, WordNet::PartOfSpeech partOfSpeech) const;

    std::unordered_map<std::string, Known> headwords;
    const WordNet& wordNet;
    const LemmaList& lemmaList;
};

} // namespace tavik
