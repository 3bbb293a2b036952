#include "Lookup/VideoLinks.h"

#include <gtest/gtest.h>

namespace tavik {
namespace {

using VideoLinks::url;

TEST(VideoLinks, nothingInAWordCanLeaveItsPlaceInTheAddress) {
    const auto youglish = [](std::string_view word) {
        return url(word, VideoSource::youglish, Accent::us);
    };
    EXPECT_EQ(youglish("  give up \n"), "https://youglish.com/pronounce/give%20up/english/us");
    EXPECT_EQ(url("run", VideoSource::youglish, Accent::aus),
              "https://youglish.com/pronounce/run/english/aus");
    EXPECT_EQ(youglish("and/or?#%é"),
              "https://youglish.com/pronounce/and%2For%3F%23%25%C3%A9/english/us");
    EXPECT_EQ(youglish(""), "https://youglish.com/pronounce//english/us");
    EXPECT_EQ(url("rock & roll+=", VideoSource::yarn, Accent::uk),
              "https://getyarn.io/yarn-find?text=rock%20%26%20roll%2B%3D");
    EXPECT_EQ(url("don't", VideoSource::playphrase, Accent::us),
              "https://www.playphrase.me/#/search?q=don't");
}

TEST(VideoLinks, choicesAreKeptUnderTheirNames) {
    for (const VideoSource source : allVideoSources)
        EXPECT_EQ(videoSourceFromRawValue(rawValue(source)), source) << label(source);
    for (const Accent accent : allAccents)
        EXPECT_EQ(accentFromRawValue(rawValue(accent)), accent) << label(accent);
    EXPECT_EQ(videoSourceFromRawValue("vimeo"), std::nullopt);
    EXPECT_EQ(accentFromRawValue(""), std::nullopt);
}

} // namespace
} // namespace tavik
