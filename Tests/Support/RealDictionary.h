#pragma once

#include "Base/ResourceFile.h"
#include "Dictionary/OfflineDictionary.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <optional>

namespace tavik::test {

/// A test on the dictionary that `tavik-dict` built for this source tree; skipped without one.
class RealDictionaryTest : public testing::Test {
protected:
    void SetUp() override {
        const auto path = resourceFile("dict.sqlite");
        if (!std::filesystem::exists(path))
            GTEST_SKIP() << "no dictionary has been built at " << path;
        dictionary.emplace(path.string());
    }

    std::optional<OfflineDictionary> dictionary;
};

} // namespace tavik::test
