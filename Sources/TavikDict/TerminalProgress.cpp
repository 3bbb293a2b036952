#include "TavikDict/TerminalProgress.h"

#include "TavikDict/BuildError.h"
#include "Text/Unicode.h"

#include <unistd.h>

#include <csignal>
#include <iostream>

namespace tavik {
namespace {

constexpr std::size_t titleColumns = 12;
constexpr std::int64_t barColumns = 30;
constexpr std::size_t maxNumbersShown = 20;
constexpr auto drawInterval = std::chrono::milliseconds(50);

// A signal handler can reach nothing else.
// NOLINTNEXTLINE(cppcoreguidelines-avoid-non-const-global-variables)
volatile std::sig_atomic_t stopRequested = 0;

void requestStop(int) {
    stopRequested = 1;
}

void throwIfStopped() {
    if (stopRequested != 0) throw BuildError("已中断，原有的词典没有改动");
}

std::string bar(std::int64_t done, std::int64_t total) {
    const std::int64_t filled = barColumns * std::min(done, total) / total;
    std::string text;
    for (std::int64_t column = 0; column < barColumns; ++column)
        text += column < filled ? "█" : "░";
    return text + ' ' + std::to_string(100 * std::min(done, total) / total) + '%';
}

} // namespace

TerminalProgress::TerminalProgress() : terminal(Terminal::of(STDERR_FILENO)) {
    for (const int signal : {SIGINT, SIGTERM})
        static_cast<void>(std::signal(signal, requestStop));
}

TerminalProgress::~TerminalProgress() {
    clearLine();
    printSkippedLines();
}

void TerminalProgress::stageBegan(std::string_view stageTitle, std::int64_t stageTotal) {
    throwIfStopped();
    title = stageTitle;
    total = stageTotal;
    nextDraw = {};
    if (terminal.isInteractive)
        draw(0);
    else
        std::cerr << title << "…\n";
}

void TerminalProgress::stageAdvanced(std::int64_t done) {
    throwIfStopped();
    if (!terminal.isInteractive || std::chrono::steady_clock::now() < nextDraw) return;
    draw(done);
}

void TerminalProgress::lineSkipped(const std::filesystem::path& file, std::int64_t line,
                                   std::string_view reason) {
    skippedLines[{file.string(), std::string(reason)}].push_back(line);
}

void TerminalProgress::printSkippedLines() const {
    for (const auto& [fileAndReason, lines] : skippedLines) {
        const auto& [file, reason] = fileAndReason;
        std::cerr << file << "：跳过 " << lines.size() << " 行（" << reason << "），第 ";
        for (std::size_t i = 0; i < std::min(lines.size(), maxNumbersShown); ++i)
            std::cerr << (i > 0 ? "、" : "") << lines[i];
        std::cerr << (lines.size() > maxNumbersShown ? "……行\n" : " 行\n");
    }
}

void TerminalProgress::draw(std::int64_t done) {
    nextDraw = std::chrono::steady_clock::now() + drawInterval;
    clearLine();
    const std::size_t width = displayWidth(title);
    std::cerr << title << std::string(titleColumns - std::min(width, titleColumns), ' ')
              << (total > 0 ? bar(done, total) : "…") << std::flush;
}

void TerminalProgress::clearLine() const {
    if (terminal.isInteractive) std::cerr << "\r\x1b[K";
}

} // namespace tavik
