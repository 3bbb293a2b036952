#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace tavik {

/// Reduces an inflected English word to its base form.
class Lemmatizer {
public:
    Lemmatizer() = default;
    Lemmatizer(const Lemmatizer&) = delete;
    Lemmatizer& operator=(const Lemmatizer&) = delete;
    virtual ~Lemmatizer() = default;

    /// The lower-case base form of `word`, or nothing when it is none's inflection or unknown.
    /// For a phrase, the phrase with its first word reduced. `word` is in normal form, as
    /// `TextUtil::normalizeWord` gives it. Never fails; safe from any thread.
    virtual std::optional<std::string> lemma(std::string_view word) const = 0;
};

} // namespace tavik
