#include "TavikDict/WordNet.h"

#include "TavikDict/BuildError.h"
#include "TavikDict/LineReader.h"
#include "Text/CharacterClasses.h"
#include "Text/Unicode.h"

#include <algorithm>
#include <charconv>
#include <optional>

namespace tavik {
namespace {

using PartOfSpeech = WordNet::PartOfSpeech;

constexpr std::array<std::string_view, WordNet::partsOfSpeech> fileEndings{"noun", "verb", "adj",
                                                                           "adv"};
constexpr std::array<PartOfSpeech, WordNet::partsOfSpeech> allPartsOfSpeech{
    PartOfSpeech::noun, PartOfSpeech::verb, PartOfSpeech::adjective, PartOfSpeech::adverb};

struct Ending {
    PartOfSpeech partOfSpeech;
    std::string_view inflected;
    std::string_view base;
};

/// The rules of detachment in morphy(7WN).
constexpr std::array<Ending, 20> endings{{
    {PartOfSpeech::noun, "s", ""},        {PartOfSpeech::noun, "ses", "s"},
    {PartOfSpeech::noun, "xes", "x"},     {PartOfSpeech::noun, "zes", "z"},
    {PartOfSpeech::noun, "ches", "ch"},   {PartOfSpeech::noun, "shes", "sh"},
    {PartOfSpeech::noun, "men", "man"},   {PartOfSpeech::noun, "ies", "y"},
    {PartOfSpeech::verb, "s", ""},        {PartOfSpeech::verb, "ies", "y"},
    {PartOfSpeech::verb, "es", "e"},      {PartOfSpeech::verb, "es", ""},
    {PartOfSpeech::verb, "ed", "e"},      {PartOfSpeech::verb, "ed", ""},
    {PartOfSpeech::verb, "ing", "e"},     {PartOfSpeech::verb, "ing", ""},
    {PartOfSpeech::adjective, "er", ""},  {PartOfSpeech::adjective, "est", ""},
    {PartOfSpeech::adjective, "er", "e"}, {PartOfSpeech::adjective, "est", "e"},
}};

bool isPhrase(std::string_view word) {
    return word.find('_') != std::string_view::npos;
}

/// The licence stands in numbered lines that begin with two blanks.
bool isLicenceLine(std::string_view line) {
    return line.rfind("  ", 0) == 0;
}

std::vector<std::string_view> fields(std::string_view line) {
    return split(line, isWhiteSpace);
}

[[noreturn]] void throwForeign(const std::filesystem::path& file) {
    throw BuildError(file.string() + " 不是 WordNet 的数据文件");
}

/// The part of speech behind the '%' of a sense key; adjective satellites are adjectives.
std::optional<PartOfSpeech> partOfSpeech(char digit) {
    switch (digit) {
    case '1':
        return PartOfSpeech::noun;
    case '2':
        return PartOfSpeech::verb;
    case '3':
    case '5':
        return PartOfSpeech::adjective;
    case '4':
        return PartOfSpeech::adverb;
    default:
        return std::nullopt;
    }
}

/// The words of a line of a data file: their number stands in hexadecimal in the fourth column,
/// then each word with a number behind it. Adjectives may have a marker of syntax, as in
/// "elect(ip)".
std::vector<std::string_view> wordsOfMeaning(std::string_view line) {
    constexpr std::size_t countColumn = 3;
    constexpr int hexadecimal = 16;
    const auto columns = fields(line.substr(0, line.find('|')));
    std::size_t count = 0;
    if (columns.size() > countColumn)
        std::from_chars(columns[countColumn].data(),
                        columns[countColumn].data() + columns[countColumn].size(), count,
                        hexadecimal);
    std::vector<std::string_view> words;
    for (std::size_t i = 0; i < count; ++i) {
        const std::size_t column = countColumn + 1 + 2 * i;
        if (column >= columns.size()) break;
        words.push_back(columns[column].substr(0, columns[column].find('(')));
    }
    return words;
}

bool isVowel(char letter) {
    return std::string_view("aeiou").find(letter) != std::string_view::npos;
}

/// Whether a verb doubles its last consonant before -ed and -ing, as short verbs of one vowel do:
/// «strip», «tap», but not «visit», «row» or «heat».
bool doublesItsConsonant(std::string_view verb) {
    if (verb.size() < 2) return false;
    const char last = verb.back();
    const bool endsInConsonant = !isVowel(last) && last != 'w' && last != 'x' && last != 'y';
    return endsInConsonant && isVowel(verb[verb.size() - 2])
           && std::count_if(verb.begin(), verb.end(), isVowel) == 1;
}

bool endsWith(std::string_view text, std::string_view ending) {
    return text.size() > ending.size() && text.substr(text.size() - ending.size()) == ending;
}

} // namespace

WordNet::WordNet(const std::filesystem::path& directory) {
    for (const PartOfSpeech part : allPartsOfSpeech) {
        const std::string ending(fileEndings[static_cast<std::size_t>(part)]);
        readWords(directory / ("data." + ending), part);
        readExceptions(directory / (ending + ".exc"), part);
    }
    readTagCounts(directory / "cntlist.rev");
}

void WordNet::readWords(const std::filesystem::path& file, PartOfSpeech partOfSpeech) {
    auto& tagCounts = lexicons[static_cast<std::size_t>(partOfSpeech)].tagCounts;
    LineReader reader(file);
    for (std::int64_t meaning = 0; reader.next(); ++meaning) {
        if (isLicenceLine(reader.line())) continue;
        for (const std::string_view spelled : wordsOfMeaning(reader.line())) {
            if (isPhrase(spelled)) continue;
            std::string word = lowercased(spelled);
            if (word != spelled) {
                nameTagCounts.emplace(std::move(word), 0);
                continue;
            }
            if (partOfSpeech == PartOfSpeech::noun) nounMeanings[word].push_back(meaning);
            tagCounts.emplace(std::move(word), 0);
        }
    }
    if (tagCounts.empty()) throwForeign(file);
}

void WordNet::readExceptions(const std::filesystem::path& file, PartOfSpeech partOfSpeech) {
    auto& exceptions = lexicons[static_cast<std::size_t>(partOfSpeech)].exceptions;
    LineReader reader(file);
    while (reader.next()) {
        const auto words = fields(reader.line());
        if (words.size() < 2 || isPhrase(words.front())) continue;
        exceptions[std::string(words.front())].assign(words.begin() + 1, words.end());
    }
}

void WordNet::readTagCounts(const std::filesystem::path& file) {
    LineReader reader(file);
    while (reader.next()) {
        const auto columns = fields(reader.line());
        if (columns.size() != 3) throwForeign(file);
        const std::string_view key = columns.front();
        const std::size_t mark = key.find('%');
        if (mark == std::string_view::npos || mark + 1 >= key.size()) throwForeign(file);
        const auto part = partOfSpeech(key[mark + 1]);
        std::int64_t count = 0;
        std::from_chars(columns[2].data(), columns[2].data() + columns[2].size(), count);
        if (!part) throwForeign(file);
        const std::string word(key.substr(0, mark));
        auto& tagCounts = lexicons[static_cast<std::size_t>(*part)].tagCounts;
        // The file has every key in lower case: a word that is a name as well counts as the word.
        auto& counts = tagCounts.contains(word) ? tagCounts : nameTagCounts;
        if (const auto counted = counts.find(word); counted != counts.end())
            counted->second += count;
    }
}

bool WordNet::isOnlyName(std::string_view word) const {
    return nameTagCounts.contains(std::string(word)) && !defines(word);
}

std::int64_t WordNet::nameTagCount(std::string_view word) const {
    const auto found = nameTagCounts.find(std::string(word));
    return found == nameTagCounts.end() ? 0 : found->second;
}

bool WordNet::isIrregular(std::string_view form) const {
    return std::any_of(lexicons.begin(), lexicons.end(), [&](const Lexicon& lexicon) {
        return lexicon.exceptions.contains(std::string(form));
    });
}

bool WordNet::isIrregularPlural(std::string_view form, std::string_view base) const {
    const auto& exceptions = lexicon(PartOfSpeech::noun).exceptions;
    const auto found = exceptions.find(std::string(form));
    return found != exceptions.end()
           && std::find(found->second.begin(), found->second.end(), base) != found->second.end();
}

bool WordNet::shareMeaning(std::string_view noun, std::string_view other) const {
    const auto meanings = nounMeanings.find(std::string(noun));
    const auto others = nounMeanings.find(std::string(other));
    if (meanings == nounMeanings.end() || others == nounMeanings.end()) return false;
    return std::find_first_of(meanings->second.begin(), meanings->second.end(),
                              others->second.begin(), others->second.end())
           != meanings->second.end();
}

bool WordNet::defines(std::string_view word, PartOfSpeech partOfSpeech) const {
    return lexicon(partOfSpeech).tagCounts.contains(std::string(word));
}

bool WordNet::defines(std::string_view word) const {
    return std::any_of(allPartsOfSpeech.begin(), allPartsOfSpeech.end(),
                       [&](PartOfSpeech part) { return defines(word, part); });
}

std::int64_t WordNet::tagCount(std::string_view word, PartOfSpeech partOfSpeech) const {
    const auto& counts = lexicon(partOfSpeech).tagCounts;
    const auto found = counts.find(std::string(word));
    return found == counts.end() ? 0 : found->second;
}

std::int64_t WordNet::tagCount(std::string_view word) const {
    std::int64_t highest = 0;
    for (const PartOfSpeech part : allPartsOfSpeech)
        highest = std::max(highest, tagCount(word, part));
    return highest;
}

std::vector<WordNet::Base> WordNet::bases(std::string_view form) const {
    std::vector<Base> found;
    const auto add = [&](std::string word, PartOfSpeech part) {
        if (word != form && defines(word, part)) found.push_back({std::move(word), part});
    };
    for (const PartOfSpeech part : allPartsOfSpeech) {
        const auto& exceptions = lexicon(part).exceptions;
        if (const auto irregular = exceptions.find(std::string(form));
            irregular != exceptions.end()) {
            for (const std::string& base : irregular->second)
                add(base, part);
            continue;
        }
        for (const Ending& ending : endings) {
            if (ending.partOfSpeech != part || !endsWith(form, ending.inflected)) continue;
            const std::string_view stem = form.substr(0, form.size() - ending.inflected.size());
            const bool wouldDouble = ending.base.empty() && part == PartOfSpeech::verb
                                     && (ending.inflected == "ed" || ending.inflected == "ing")
                                     && doublesItsConsonant(stem);
            if (!wouldDouble) add(std::string(stem).append(ending.base), part);
        }
    }
    return found;
}

std::vector<std::string> WordNet::irregularForms() const {
    std::vector<std::string> forms;
    for (const Lexicon& lexicon : lexicons)
        for (const auto& [form, bases] : lexicon.exceptions)
            forms.push_back(form);
    return forms;
}

std::vector<std::string> quotedExamples(std::string_view gloss) {
    std::vector<std::string> examples;
    for (std::size_t open = gloss.find('"'); open != std::string_view::npos;) {
        const std::size_t close = gloss.find('"', open + 1);
        if (close == std::string_view::npos) break;
        const std::string_view quoted = gloss.substr(open + 1, close - open - 1);
        const std::string_view example = trimmed(quoted, [](char32_t scalar) {
            return isWhiteSpace(scalar) || scalar == ';' || scalar == ',' || scalar == ':';
        });
        if (example.find(' ') != std::string_view::npos) examples.emplace_back(example);
        open = gloss.find('"', close + 1);
    }
    return examples;
}

std::vector<std::string> readQuotedExamples(const std::filesystem::path& directory,
                                            BuildObserver& observer) {
    std::vector<std::string> examples;
    for (const std::string_view ending : fileEndings) {
        const auto file = directory / ("data." + std::string(ending));
        LineReader reader(file);
        while (reader.next()) {
            const std::string& line = reader.line();
            if (isLicenceLine(line)) continue;
            const std::size_t bar = line.find('|');
            const bool isBalanced = std::count(line.begin(), line.end(), '"') % 2 == 0;
            if (bar == std::string::npos || !isBalanced || !reader.isCleanText()) {
                observer.lineSkipped(file, reader.number(), "引号不成对");
                continue;
            }
            for (auto& example : quotedExamples(std::string_view(line).substr(bar + 1)))
                examples.push_back(std::move(example));
        }
    }
    return examples;
}

std::string readWordNetLicence(const std::filesystem::path& directory) {
    LineReader reader(directory / "data.noun");
    std::string licence;
    while (reader.next() && isLicenceLine(reader.line())) {
        const std::string_view numbered = trimmed(reader.line(), isWhiteSpace);
        const std::size_t text = std::min(numbered.find(' '), numbered.size() - 1) + 1;
        licence.append(numbered.substr(text)).append("\n");
    }
    return licence;
}

} // namespace tavik
