// Prints, for a person to judge, every word among the most frequent headwords that is filed under
// another word, and every base form of the raw data that was dropped:
//
//     rank TAB word TAB base TAB reason
//
// Reasons: "dictionary" the raw data say so, "replaced" they name another base, "added" they name
// none, "dropped" they name the base but the word is filed under itself.

#include "Dictionary/OfflineDictionary.h"
#include "TavikDict/ECDICT.h"
#include "TavikDict/SilentObserver.h"
#include "Text/Unicode.h"

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <exception>
#include <iostream>

namespace {

using namespace tavik;

std::vector<Headword> mostFrequent(const std::filesystem::path& ecdict, std::size_t count) {
    SilentObserver silent;
    auto headwords = readHeadwords(ecdict / "assets" / "ecdict.csv", silent);
    headwords.erase(std::remove_if(headwords.begin(), headwords.end(),
                                   [](const Headword& headword) { return headword.rank() == 0; }),
                    headwords.end());
    std::stable_sort(headwords.begin(), headwords.end(),
                     [](const auto& a, const auto& b) { return a.rank() < b.rank(); });
    headwords.resize(std::min(headwords.size(), count));
    return headwords;
}

void printChange(const OfflineDictionary& dictionary, const Headword& headword) {
    const std::string word = lowercased(headword.word);
    const std::string base = dictionary.lemma(word);
    const std::string stated = lowercased(exchangeForm(headword.exchange, "0"));
    const bool isStated = !stated.empty() && stated != word;
    if (base == word && !isStated) return;
    const char* reason = "replaced";
    if (base == word)
        reason = "dropped";
    else if (base == stated)
        reason = "dictionary";
    else if (!isStated)
        reason = "added";
    std::printf("%lld\t%s\t%s\t%s\n", static_cast<long long>(headword.rank()), word.c_str(),
                base == word ? stated.c_str() : base.c_str(), reason);
}

} // namespace

int main(int argc, char** argv) {
    if (argc < 3) {
        std::cerr << "usage: tavik-lemma-changes DICTIONARY ECDICT-DIRECTORY [COUNT]\n";
        return 1;
    }
    constexpr std::size_t defaultCount = 20000;
    const std::size_t count = argc > 3 ? std::strtoul(argv[3], nullptr, 10) : defaultCount;
    try {
        const OfflineDictionary dictionary(argv[1]);
        for (const Headword& headword : mostFrequent(argv[2], count))
            printChange(dictionary, headword);
    } catch (const std::exception& error) {
        std::cerr << "tavik-lemma-changes: " << error.what() << '\n';
        return 1;
    }
    return 0;
}
