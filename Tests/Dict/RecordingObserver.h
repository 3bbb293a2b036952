#pragma once

#include "TavikDict/BuildObserver.h"

#include <functional>
#include <string>
#include <vector>

namespace tavik::test {

/// Remembers the stages and the skipped lines of a build ("file:line").
class RecordingObserver final : public BuildObserver {
public:
    void stageBegan(std::string_view title, std::int64_t) override {
        stages.emplace_back(title);
        if (onStage) onStage(stages.back());
    }

    void stageAdvanced(std::int64_t) override {}

    void lineSkipped(const std::filesystem::path& file, std::int64_t line,
                     std::string_view) override {
        skipped.push_back(file.filename().string() + ':' + std::to_string(line));
    }

    std::vector<std::string> stages;
    std::vector<std::string> skipped;
    /// Called at the begin of each stage; may throw.
    std::function<void(const std::string&)> onStage;
};

} // namespace tavik::test
