#include "Lookup/VideoLinks.h"

#include "Text/CharacterClasses.h"
#include "Text/URL.h"
#include "Text/Unicode.h"

#include <algorithm>

namespace tavik {
namespace {

template<typename Choice>
struct Texts {
    Choice choice;
    std::string_view rawValue;
    std::string_view label;
};

constexpr std::array sourceTexts{
    Texts<VideoSource>{VideoSource::youglish, "youglish", "YouGlish（YouTube 真人片段）"},
    Texts<VideoSource>{VideoSource::playphrase, "playphrase", "PlayPhrase（影视片段）"},
    Texts<VideoSource>{VideoSource::yarn, "yarn", "Yarn（影视片段）"},
};

constexpr std::array accentTexts{
    Texts<Accent>{Accent::us, "us", "美音"},
    Texts<Accent>{Accent::uk, "uk", "英音"},
    Texts<Accent>{Accent::aus, "aus", "澳音"},
};

constexpr const char* youglishOrigin = "https://youglish.com";
constexpr const char* playphraseOrigin = "https://www.playphrase.me";
constexpr const char* yarnOrigin = "https://getyarn.io";

/// What RFC 3986 lets stand in a path or query, without what would end it or split it there.
constexpr std::string_view pathAllowed = "-._~!$&'()*+,;=:@";
constexpr std::string_view queryAllowed = "-._~!$'()*,;:@/?";

template<typename Choice, std::size_t count>
std::optional<Choice> choiceWith(const std::array<Texts<Choice>, count>& texts,
                                 std::string_view rawValue) {
    const auto* const found = std::ranges::find(texts, rawValue, &Texts<Choice>::rawValue);
    if (found == texts.end()) return std::nullopt;
    return found->choice;
}

} // namespace

std::string_view rawValue(VideoSource source) {
    return sourceTexts.at(static_cast<std::size_t>(source)).rawValue;
}

std::string_view rawValue(Accent accent) {
    return accentTexts.at(static_cast<std::size_t>(accent)).rawValue;
}

std::optional<VideoSource> videoSourceFromRawValue(std::string_view text) {
    return choiceWith(sourceTexts, text);
}

std::optional<Accent> accentFromRawValue(std::string_view text) {
    return choiceWith(accentTexts, text);
}

std::string_view label(VideoSource source) {
    return sourceTexts.at(static_cast<std::size_t>(source)).label;
}

std::string_view label(Accent accent) {
    return accentTexts.at(static_cast<std::size_t>(accent)).label;
}

std::optional<std::string> VideoLinks::url(std::string_view word, VideoSource source,
                                           Accent accent) {
    const std::string_view term = trimmed(word, isWhiteSpace);
    std::string address;
    switch (source) {
    case VideoSource::youglish:
        address = youglishOrigin + ("/pronounce/" + percentEncoded(term, pathAllowed)) + "/english/"
                  + std::string(rawValue(accent));
        break;
    case VideoSource::playphrase:
        address = playphraseOrigin + ("/#/search?q=" + percentEncoded(term, queryAllowed));
        break;
    case VideoSource::yarn:
        address = yarnOrigin + ("/yarn-find?text=" + percentEncoded(term, queryAllowed));
        break;
    }
    if (!URL::parse(address)) return std::nullopt;
    return address;
}

} // namespace tavik
