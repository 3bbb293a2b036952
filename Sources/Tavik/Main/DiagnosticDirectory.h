#pragma once

#include <filesystem>

namespace tavik {

/// A data directory of its own for a run that must leave the user's alone: once this is made,
/// "TAVIK_DATA_DIR" names a place that nobody has used before. It is removed in the end, with all
/// that was put there. To be made before any other thread is started.
class DiagnosticDirectory {
public:
    DiagnosticDirectory();
    ~DiagnosticDirectory();
    DiagnosticDirectory(const DiagnosticDirectory&) = delete;
    DiagnosticDirectory& operator=(const DiagnosticDirectory&) = delete;

private:
    std::filesystem::path directory;
};

} // namespace tavik
