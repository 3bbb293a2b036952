#pragma once

#include <compare>
#include <map>
#include <string>
#include <vector>

namespace tavik {

/// One headword of the dictionary.
struct DictEntry {
    /// In the dictionary's own spelling and case.
    std::string word;
    /// IPA.
    std::string phonetic;
    /// Chinese senses.
    std::vector<std::string> translations;
    /// English definitions.
    std::vector<std::string> definitions;
    /// Exams and word lists that name the word.
    std::vector<std::string> tags;
    /// Collins frequency stars, 1 to 5; 0 for none.
    int collins = 0;
    /// Whether the Oxford core list names the word.
    bool oxford = false;
    /// Inflections by key: p past, d past participle, i present participle, 3 third person,
    /// r comparative, t superlative, s plural, 0 the base form, 1 which of its forms this word is.
    std::map<std::string, std::string> exchange;

    /// The gloss of one line: the first translation, else the first definition, else empty.
    std::string brief() const;

    bool operator==(const DictEntry&) const = default;
};

/// An English sentence and its Chinese translation, which may be empty.
struct ExampleSentence {
    std::string en;
    std::string zh;

    auto operator<=>(const ExampleSentence&) const = default;
};

/// A headword to offer while a word is typed.
struct Suggestion {
    std::string word;
    /// The first line of its translation; may be empty.
    std::string gloss;

    bool operator==(const Suggestion&) const = default;
};

} // namespace tavik

template<>
struct std::hash<tavik::ExampleSentence> {
    std::size_t operator()(const tavik::ExampleSentence& sentence) const noexcept;
};
