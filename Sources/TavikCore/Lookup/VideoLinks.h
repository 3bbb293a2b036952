#pragma once

#include <array>
#include <optional>
#include <string>
#include <string_view>

namespace tavik {

/// A site that shows clips in which a word is spoken.
enum class VideoSource { youglish, playphrase, yarn };

inline constexpr std::array allVideoSources{VideoSource::youglish, VideoSource::playphrase,
                                            VideoSource::yarn};

enum class Accent { us, uk, aus };

inline constexpr std::array allAccents{Accent::us, Accent::uk, Accent::aus};

/// The text under which preferences keep a choice.
std::string_view rawValue(VideoSource source);
std::string_view rawValue(Accent accent);
std::optional<VideoSource> videoSourceFromRawValue(std::string_view text);
std::optional<Accent> accentFromRawValue(std::string_view text);

/// The choice's name for people.
std::string_view label(VideoSource source);
std::string_view label(Accent accent);

namespace VideoLinks {

/// The address of the page with clips of `word`; the accent counts for YouGlish only. Nothing when
/// no address comes out.
std::optional<std::string> url(std::string_view word, VideoSource source, Accent accent);

} // namespace VideoLinks

} // namespace tavik
