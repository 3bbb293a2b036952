#pragma once

#include "Platform/Support/Daemon.h"
#include "Support/TemporaryDirectory.h"

#include <chrono>

namespace tavik::test {

/// Records what sounds in the private desktop (the daemon "audio") until the object goes.
class Recorder {
public:
    /// Returns once the recording has begun.
    Recorder();

    /// How much has been recorded.
    std::chrono::milliseconds length() const;

    /// From the first sound to the last; 0 if there was none.
    std::chrono::milliseconds soundLength() const;

    /// How long it has been silent at the end; all the time if there was no sound.
    std::chrono::milliseconds silenceAtEnd() const;

private:
    TemporaryDirectory directory;
    BackgroundProgram recorder;
};

} // namespace tavik::test
