#pragma once

#include "Capture/CaptureResult.h"
#include "Ports/Accessibility.h"
#include "Ports/Pasteboard.h"
#include "Ports/Processes.h"
#include "Ports/Workspace.h"

#include <functional>
#include <string>

namespace tavik {

/// What a capture asks of the outside world; all of it must outlive the capture.
struct CapturePorts {
    Accessibility& accessibility;
    Workspace& workspace;
    Pasteboard& pasteboard;
    Processes& processes;
    /// Whether other applications let their text be read. Any thread may ask; must not wait.
    std::function<bool()> isTrusted;
    /// Told that the application in front describes its pages only if it was started with an option
    /// for that; `bundleID` as the desktop has it. Called on the capturing thread.
    std::function<void(const std::string& bundleID)> onStartOptionNeeded;
};

/// Reads what the user has selected in the application in front. Keeps nothing between captures.
class SelectionCapture {
public:
    explicit SelectionCapture(CapturePorts ports);

    /// Reads text, sentence, place and source, within a second and a half where the window system
    /// answers; where only the clipboard is left, in up to six, and then there is neither sentence
    /// nor place. Throws `CaptureError` and nothing else. Waits for other programs: never for the
    /// main thread. Any other thread may call, several at a time.
    CaptureResult capture() const;

private:
    CapturePorts ports;
};

} // namespace tavik
