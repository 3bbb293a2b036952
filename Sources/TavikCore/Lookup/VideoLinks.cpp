#include "Lookup/VideoLinks.h"

#include "Base/EnumTexts.h"
#include "Text/CharacterClasses.h"
#include "Text/URL.h"
#include "Text/Unicode.h"

namespace tavik {
namespace {

constexpr EnumTable<VideoSource, 3> sourceTexts{
    {{VideoSource::youglish, "youglish", "YouGlish（YouTube 真人片段）"},
     {VideoSource::playphrase, "playphrase", "PlayPhrase（影视片段）"},
     {VideoSource::yarn, "yarn", "Yarn（影视片段）"}}};

constexpr EnumTable<Accent, 3> accentTexts{
    {{Accent::us, "us", "美音"}, {Accent::uk, "uk", "英音"}, {Accent::aus, "aus", "澳音"}}};

constexpr const char* youglishOrigin = "https://youglish.com";
constexpr const char* playphraseOrigin = "https://www.playphrase.me";
constexpr const char* yarnOrigin = "https://getyarn.io";

/// What RFC 3986 lets stand in a path or query, without what would end it or split it there.
constexpr std::string_view pathAllowed = "-._~!$&'()*+,;=:@";
constexpr std::string_view queryAllowed = "-._~!$'()*,;:@/?";

} // namespace

std::string_view rawValue(VideoSource source) {
    return textsOf(sourceTexts, source).rawValue;
}

std::string_view rawValue(Accent accent) {
    return textsOf(accentTexts, accent).rawValue;
}

std::optional<VideoSource> videoSourceFromRawValue(std::string_view text) {
    return caseWithRawValue(sourceTexts, text);
}

std::optional<Accent> accentFromRawValue(std::string_view text) {
    return caseWithRawValue(accentTexts, text);
}

std::string_view label(VideoSource source) {
    return textsOf(sourceTexts, source).label;
}

std::string_view label(Accent accent) {
    return textsOf(accentTexts, accent).label;
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
