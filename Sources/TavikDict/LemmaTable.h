#pragma once

#include "TavikDict/BaseForms.h"

#include <map>
#include <string>
#include <string_view>

namespace tavik {

/// Inflected form and base form, both lower-case; only pairs whose base is a headword.
using LemmaTable = std::map<std::string, std::string, std::less<>>;

/// The base forms of all single words that the sources speak of.
LemmaTable makeLemmaTable(const std::vector<Headword>& headwords, const WordNet& wordNet,
                          const LemmaList& lemmaList);

/// `headword.exchange` with the base form that the table decides on, or without one. A headword
/// that is no single word keeps what it has.
std::string correctedExchange(const Headword& headword, const LemmaTable& table);

/// `sentence` with each word as its base form, or empty when no word has one.
std::string lemmatizedSentence(std::string_view sentence, const LemmaTable& table);

} // namespace tavik
