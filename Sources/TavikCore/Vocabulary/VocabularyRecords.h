#pragma once

#include "Base/Date.h"
#include "Learning/Card.h"

#include <cstdint>
#include <optional>
#include <string>

namespace tavik {

/// A saved word.
struct Word {
    std::int64_t id = 0;
    /// The base form, under which the word is filed; unique up to ASCII case.
    std::string lemma;
    /// The form shown as the title.
    std::string headword;
    /// IPA; empty when unknown.
    std::string phonetic;
    /// One line of Chinese; empty when unknown.
    std::string brief;
    Date createdAt;

    bool operator==(const Word&) const = default;
};

/// Where a selection came from.
struct SourceInfo {
    std::optional<std::string> appName = std::nullopt;
    /// The application's identifier on its desktop.
    std::optional<std::string> bundleID = std::nullopt;
    /// The address of the document or page.
    std::optional<std::string> url = std::nullopt;

    /// The application and the site or file name, for people; empty when neither is known.
    std::string label() const;

    bool operator==(const SourceInfo&) const = default;
};

/// One sentence in which a word was met.
struct Encounter {
    std::int64_t id = 0;
    std::int64_t wordID = 0;
    /// The text the user had selected.
    std::string selection;
    std::optional<std::string> sentence = std::nullopt;
    std::optional<std::string> contextMeaning = std::nullopt;
    SourceInfo source;
    Date seenAt;

    bool operator==(const Encounter&) const = default;
};

/// One row of the book: a word, its card, and how it was met last.
struct VocabItem {
    Word word;
    Card card;
    std::optional<Encounter> latest = std::nullopt;
    std::int64_t encounterCount = 0;

    bool operator==(const VocabItem&) const = default;
};

} // namespace tavik
