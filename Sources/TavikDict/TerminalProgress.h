#pragma once

#include "TavikDict/BuildObserver.h"
#include "TavikTerminal/Terminal.h"

#include <chrono>
#include <map>
#include <string>
#include <utility>
#include <vector>

namespace tavik {

/// Shows a build on standard error: a progress bar for a person, a line for each stage in a log,
/// and at the end the numbers of the skipped lines of each file. SIGINT and SIGTERM stop the build
/// at its next step with a `BuildError`.
class TerminalProgress final : public BuildObserver {
public:
    TerminalProgress();
    TerminalProgress(const TerminalProgress&) = delete;
    TerminalProgress& operator=(const TerminalProgress&) = delete;
    /// Ends the bar's line and names the skipped lines.
    ~TerminalProgress() override;

    void stageBegan(std::string_view title, std::int64_t total) override;
    void stageAdvanced(std::int64_t done) override;
    void lineSkipped(const std::filesystem::path& file, std::int64_t line,
                     std::string_view reason) override;

private:
    void draw(std::int64_t done);
    void clearLine() const;
    void printSkippedLines() const;

    Terminal terminal;
    std::string title;
    std::int64_t total = 0;
    /// The numbers of the skipped lines, by file and reason.
    std::map<std::pair<std::string, std::string>, std::vector<std::int64_t>> skippedLines;
    std::chrono::steady_clock::time_point nextDraw;
};

} // namespace tavik
