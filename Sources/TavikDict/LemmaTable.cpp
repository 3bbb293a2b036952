#include "TavikDict/LemmaTable.h"

#include "Text/Unicode.h"

#include <algorithm>
#include <set>
#include <unordered_set>

namespace tavik {
namespace {

constexpr std::string_view baseFormKey = "0";

bool isSingleWord(std::string_view word) {
    return !word.empty() && std::all_of(word.begin(), word.end(), [](char unit) {
        return (unit >= 'a' && unit <= 'z') || unit == '\'' || unit == '-';
    });
}

bool isASCIILetter(char unit) {
    return (unit >= 'a' && unit <= 'z') || (unit >= 'A' && unit <= 'Z');
}

/// Where the word that starts at `start` ends: letters, with single hyphens and apostrophes inside.
std::size_t wordEnd(std::string_view text, std::size_t start) {
    std::size_t end = start;
    while (end < text.size()
           && (isASCIILetter(text[end])
               || ((text[end] == '-' || text[end] == '\'') && end + 1 < text.size()
                   && isASCIILetter(text[end + 1]))))
        ++end;
    return end;
}

} // namespace

LemmaTable makeLemmaTable(const std::vector<Headword>& headwords, const WordNet& wordNet,
                          const LemmaList& lemmaList) {
    std::unordered_set<std::string> known;
    std::set<std::string> forms;
    const auto addForm = [&](std::string form) {
        if (isSingleWord(form)) forms.insert(std::move(form));
    };
    for (const Headword& headword : headwords) {
        std::string word = lowercased(headword.word);
        known.insert(word);
        addForm(std::move(word));
        for (const std::string_view key : {"p", "d", "i", "3", "r", "t", "s"})
            addForm(lowercased(exchangeForm(headword.exchange, key)));
    }
    for (auto& form : lemmaList.forms())
        addForm(std::move(form));
    for (auto& form : wordNet.irregularForms())
        addForm(std::move(form));

    const BaseForms rules(headwords, wordNet, lemmaList);
    LemmaTable table;
    for (const std::string& form : forms)
        if (auto base = rules.baseForm(form); base && known.contains(*base))
            table.emplace(form, std::move(*base));
    return table;
}

std::string correctedExchange(const Headword& headword, const LemmaTable& table) {
    const std::string word = lowercased(headword.word);
    if (!isSingleWord(word)) return headword.exchange;
    const std::string_view stated = exchangeForm(headword.exchange, baseFormKey);
    const auto decided = table.find(word);
    if (decided == table.end())
        return stated.empty() ? headword.exchange
                              : exchangeWith(headword.exchange, baseFormKey, std::nullopt);
    if (lowercased(stated) == decided->second) return headword.exchange;
    return exchangeWith(headword.exchange, baseFormKey, decided->second);
}

std::string lemmatizedSentence(std::string_view sentence, const LemmaTable& table) {
    std::string result;
    bool isChanged = false;
    for (std::size_t at = 0; at < sentence.size();) {
        if (!isASCIILetter(sentence[at])) {
            result += sentence[at++];
            continue;
        }
        const std::string_view word = sentence.substr(at, wordEnd(sentence, at) - at);
        const auto base = table.find(lowercased(word));
        isChanged = isChanged || base != table.end();
        result += base == table.end() ? word : std::string_view(base->second);
        at += word.size();
    }
    return isChanged ? result : std::string();
}

} // namespace tavik
