#include "Base/DataDirectory.h"

#include <gtest/gtest.h>

#include <map>

namespace tavik {
namespace {

TEST(DataDirectory, isNamedByTheUserThenByTheStandardThenByTheHome) {
    const auto directory = [](std::map<std::string, std::string> variables) {
        return dataDirectory([&](const char* name) -> std::optional<std::string> {
            const auto found = variables.find(name);
            if (found == variables.end()) return std::nullopt;
            return found->second;
        });
    };
    EXPECT_EQ(directory({{"TAVIK_DATA_DIR", "/x/y"}, {"XDG_DATA_HOME", "/d"}}), "/x/y");
    EXPECT_EQ(directory({{"TAVIK_DATA_DIR", ""}, {"HOME", "/h"}}), ".");
    EXPECT_EQ(directory({{"XDG_DATA_HOME", "/d"}, {"HOME", "/h"}}), "/d/Tavik");
    EXPECT_EQ(directory({{"XDG_DATA_HOME", "relative"}, {"HOME", "/h"}}), "/h/.local/share/Tavik");
    EXPECT_TRUE(directory({{"HOME", ""}}).is_absolute()) << "the user's own home then";
}

} // namespace
} // namespace tavik
