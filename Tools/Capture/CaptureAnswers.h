#pragma once

#include "Capture/SelectionCapture.h"
#include "Platform/Linux/AtSpi/AtSpiAccessibility.h"
#include "Platform/Linux/Process/ProcProcesses.h"
#include "Platform/Linux/X11/X11Pasteboard.h"
#include "Platform/Linux/X11/X11Workspace.h"
#include "Platform/Linux/Xdg/DesktopEntries.h"

#include <string>

namespace tavik {

/// Captures as lines of JSON.
class CaptureAnswers {
public:
    CaptureAnswers();

    /// What is selected in the application in front. Rectangles are in physical pixels from the top
    /// left of the desktop.
    std::string next();

private:
    AtSpiAccessibility accessibility;
    DesktopEntries entries;
    X11Workspace workspace;
    X11Pasteboard pasteboard;
    ProcProcesses processes;
    SelectionCapture capture;
};

} // namespace tavik
