#pragma once

#include "TavikDict/ECDICT.h"
#include "TavikDict/LemmaList.h"
#include "TavikDict/WordNet.h"

#include <optional>
#include <string>
#include <unordered_map>
#include <vector>

namespace tavik {

/// Decides under which base form an English word is filed. The lemma table, the dictionary's own
/// base-form keys and the lemma column of the example index are all made by this one decision.
///
/// 1. Closed-class words have fixed answers: the forms of be, have and do, and the words that only
///    look inflected.
/// 2. The dictionary's own base form holds, unless it is a single letter or WordNet speaks against
///    it: it knows the word but not the base, or the word itself is the more frequent of both.
/// 3. Else the bases that WordNet's morphology allows compete with the word itself by tag count,
///    the word's own count doubled. A ranked headword that the dictionary gives no base form is
///    taken at its word unless its base is well attested.
/// 4. Where WordNet knows neither word nor base, the lemma list decides.
class BaseForms {
public:
    /// All arguments must outlive the object.
    BaseForms(const std::vector<Headword>& headwords, const WordNet& wordNet,
              const LemmaList& lemmaList);

    /// The base form of a lower-case word, or nothing for a word that is its own.
    std::optional<std::string> baseForm(const std::string& word) const;

private:
    struct Known {
        std::int64_t rank = 0;
        std::string ownBase;
        bool isCapitalised = false;
    };

    const Known* known(const std::string& word) const;
    bool isPlausible(const std::string& word, const std::string& base) const;
    std::optional<std::string> weighed(const std::string& word,
                                       const std::vector<WordNet::Base>& bases) const;
    bool isGuarded(const std::string& word, const std::string& base) const;

    std::unordered_map<std::string, Known> headwords;
    const WordNet& wordNet;
    const LemmaList& lemmaList;
};

} // namespace tavik
