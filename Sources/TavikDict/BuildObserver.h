#pragma once

#include <cstdint>
#include <filesystem>
#include <string_view>

namespace tavik {

/// Hears how a build goes on. Any operation may throw to stop the build; the old dictionary then
/// stays as it is.
class BuildObserver {
public:
    BuildObserver() = default;
    BuildObserver(const BuildObserver&) = delete;
    BuildObserver& operator=(const BuildObserver&) = delete;
    virtual ~BuildObserver() = default;

    /// A stage begins; `total` steps will be reported, or none when it is 0.
    virtual void stageBegan(std::string_view title, std::int64_t total) = 0;
    virtual void stageAdvanced(std::int64_t done) = 0;
    /// A line of an input file was skipped.
    virtual void lineSkipped(const std::filesystem::path& file, std::int64_t line,
                             std::string_view reason) = 0;
};

} // namespace tavik
