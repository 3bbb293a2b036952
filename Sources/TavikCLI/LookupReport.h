#pragma once

#include "Lookup/LookupService.h"
#include "Lookup/VideoLinks.h"
#include "TavikTerminal/Report.h"
#include "Text/TextUtil.h"

#include <nlohmann/json_fwd.hpp>

#include <optional>
#include <string>
#include <string_view>

namespace tavik {

/// The sentence in which a word was met, split around the word if it stands in it.
struct SentenceContext {
    std::string sentence;
    std::optional<TextUtil::Highlight> highlight;
};

/// A word with the place where it stood.
struct WordInContext {
    LookupResult lookup;
    std::optional<SentenceContext> context;
};

/// Looks `selection` up. Its sentence is the one of `text` with the word, or one of its forms, in
/// it; all of `text` when the word is not in it; none when `text` is blank.
WordInContext lookUpInContext(const LookupService& service, std::string_view selection,
                              std::string_view text, const SourceInfo& source = {});

/// The result as a JSON object; the keys are the names of the fields.
nlohmann::ordered_json lookupJSON(const LookupResult& lookup);

/// Adds the result for a person.
void addLookup(Report& report, const WordInContext& word);

/// The addresses of video clips with the word, by site.
nlohmann::ordered_json videosJSON(const LookupResult& lookup, Accent accent);
void addVideos(Report& report, const LookupResult& lookup, Accent accent);

/// Adds what the language model says of the word.
void addExplanation(Report& report, const ContextExplanation& explanation);

} // namespace tavik
