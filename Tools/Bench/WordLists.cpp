#include "WordLists.h"

#include "Text/Unicode.h"

#include <algorithm>
#include <array>
#include <fstream>
#include <stdexcept>
#include <unordered_set>

namespace tavik {
namespace {

constexpr std::size_t frequentWords = 10000;
constexpr std::size_t inflectedForms = 4000;

constexpr std::array<const char*, 7> inflectionKeys{"p", "d", "i", "3", "r", "t", "s"};

std::vector<const Headword*> mostFrequent(const std::vector<Headword>& headwords) {
    std::vector<const Headword*> ranked;
    for (const Headword& headword : headwords)
        if (headword.rank() > 0) ranked.push_back(&headword);
    std::stable_sort(ranked.begin(), ranked.end(), [](const Headword* one, const Headword* other) {
        return one->rank() < other->rank();
    });
    ranked.resize(std::min(ranked.size(), frequentWords));
    return ranked;
}

std::vector<std::string> inflections(const std::vector<const Headword*>& headwords) {
    std::vector<std::string> forms;
    std::unordered_set<std::string_view> taken;
    for (const Headword* const headword : headwords)
        for (const char* const key : inflectionKeys) {
            const std::string_view form = exchangeForm(headword->exchange, key);
            if (form.empty() || form == headword->word || !taken.insert(form).second) continue;
            forms.emplace_back(form);
            if (forms.size() == inflectedForms) return forms;
        }
    return forms;
}

std::vector<std::string> absentWords(const std::vector<Headword>& headwords,
                                     const std::vector<const Headword*>& frequent) {
    std::unordered_set<std::string> known;
    for (const Headword& headword : headwords)
        known.insert(lowercased(headword.word));
    std::vector<std::string> absent;
    for (const Headword* const headword : frequent) {
        const std::string word = lowercased(headword->word) + "qx";
        if (!known.contains(word)) absent.push_back(word);
    }
    return absent;
}

} // namespace

WordLists makeWordLists(const std::vector<Headword>& headwords) {
    const auto frequent = mostFrequent(headwords);
    WordLists lists;
    for (const Headword* const headword : frequent)
        lists.frequent.push_back(headword->word);
    lists.inflected = inflections(frequent);
    lists.absent = absentWords(headwords, frequent);
    return lists;
}

void writeLines(const std::filesystem::path& file, const std::vector<std::string>& lines) {
    std::ofstream output(file);
    for (const std::string& line : lines)
        output << line << '\n';
    if (!output.flush()) throw std::runtime_error("cannot write " + file.string());
}

std::vector<std::string> readLines(const std::filesystem::path& file) {
    std::ifstream input(file);
    std::vector<std::string> lines;
    for (std::string line; std::getline(input, line);)
        lines.push_back(line);
    if (lines.empty()) throw std::runtime_error("cannot read " + file.string());
    return lines;
}

std::vector<std::string> spreadSample(const std::vector<std::string>& words, std::size_t count) {
    if (words.size() <= count) return words;
    std::vector<std::string> sample;
    for (std::size_t i = 0; i < count; ++i)
        sample.push_back(words[i * words.size() / count]);
    return sample;
}

} // namespace tavik
