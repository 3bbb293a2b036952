#pragma once

#include "Base/DataDirectory.h"
#include "Base/Date.h"
#include "Capture/CaptureResult.h"

#include <exception>
#include <filesystem>
#include <functional>
#include <string>

namespace tavik {

/// A line for every capture, in a text file that only the user can read.
///
/// The file stays below a mebibyte; then it becomes "capture.log.1", in the place of the one
/// before, and a new one begins. Programs that write at the same time leave each other's lines
/// whole. What cannot be written is left out. Safe from any thread.
class CaptureLog {
public:
    /// "Library/Logs/Tavik/capture.log" in the user's home directory.
    static std::filesystem::path standardPath(const EnvironmentReader& environment);

    explicit CaptureLog(std::filesystem::path file = standardPath(environmentVariable),
                        std::function<Date()> now = currentDate);

    /// `start` is when the capture began.
    void write(const CaptureResult& result, Date start) const;
    /// Of a `CaptureError`, with the application that was in front.
    void write(const std::exception& error, Date start) const;

private:
    std::string milliseconds(Date start) const;
    void append(const std::string& message) const;

    std::filesystem::path file;
    std::function<Date()> now;
};

} // namespace tavik
