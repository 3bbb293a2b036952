#pragma once

#include "TavikDict/BuildObserver.h"

#include <array>
#include <cstdint>
#include <filesystem>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

namespace tavik {

/// The words, inflections and tag counts of a WordNet database directory, held in memory. All words
/// are lower-case; phrases are left out.
class WordNet {
public:
    enum class PartOfSpeech { noun, verb, adjective, adverb };
    static constexpr std::size_t partsOfSpeech = 4;

    struct Base {
        std::string word;
        PartOfSpeech partOfSpeech;
    };

    /// Throws `BuildError` when a file is missing or not WordNet's.
    explicit WordNet(const std::filesystem::path& directory);

    /// Whether it has the word in lower case; names do not count.
    bool defines(std::string_view word) const;
    bool defines(std::string_view word, PartOfSpeech partOfSpeech) const;

    /// Whether it knows the word, but only as a name.
    bool isOnlyName(std::string_view word) const;
    /// How often the tagged texts use the word as a name.
    std::int64_t nameTagCount(std::string_view word) const;

    /// Whether an exception list has `form` under any base.
    bool isIrregular(std::string_view form) const;
    /// Whether the exception list of nouns has `form` under `base`.
    bool isIrregularPlural(std::string_view form, std::string_view base) const;

    /// Whether both words, as nouns, stand for one meaning, like «bacteria» and «bacterium».
    bool shareMeaning(std::string_view noun, std::string_view other) const;

    /// How often the tagged texts behind WordNet use the word in that part of speech.
    std::int64_t tagCount(std::string_view word, PartOfSpeech partOfSpeech) const;
    /// The highest count over all parts of speech.
    std::int64_t tagCount(std::string_view word) const;

    /// The words that `form` may be an inflection of, by the rules of morphy(7WN): the exception
    /// list of each part of speech, and only where that is silent its endings. Never `form` itself,
    /// nor a verb that would have doubled its consonant («striped» is not from «strip»).
    std::vector<Base> bases(std::string_view form) const;

    /// Every inflected form in the exception lists.
    std::vector<std::string> irregularForms() const;

private:
    struct Lexicon {
        std::unordered_map<std::string, std::int64_t> tagCounts;
        std::unordered_map<std::string, std::vector<std::string>> exceptions;
    };

    void readWords(const std::filesystem::path& file, PartOfSpeech partOfSpeech);
    void readExceptions(const std::filesystem::path& file, PartOfSpeech partOfSpeech);
    void readTagCounts(const std::filesystem::path& file);

    const Lexicon& lexicon(PartOfSpeech partOfSpeech) const {
        return lexicons[static_cast<std::size_t>(partOfSpeech)];
    }

    std::array<Lexicon, partsOfSpeech> lexicons;
    std::unordered_map<std::string, std::int64_t> nameTagCounts;
    /// The numbers of the meanings of each noun.
    std::unordered_map<std::string, std::vector<std::int64_t>> nounMeanings;
};

/// A quoted example in a gloss of WordNet; at least two words, without its quotes.
std::vector<std::string> quotedExamples(std::string_view gloss);

/// The quoted examples of all glosses in order. Glosses whose quotes do not match are reported and
/// left out.
std::vector<std::string> readQuotedExamples(const std::filesystem::path& directory,
                                            BuildObserver& observer);

/// WordNet's licence as it stands at the head of its data files.
std::string readWordNetLicence(const std::filesystem::path& directory);

} // namespace tavik
