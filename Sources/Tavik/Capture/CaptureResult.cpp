#include "Capture/CaptureResult.h"

namespace tavik {

const char* text(CaptureMethod method) {
    switch (method) {
    case CaptureMethod::axMarker:
        return "ax-marker";
    case CaptureMethod::axText:
        return "ax-text";
    case CaptureMethod::clipboard:
        return "clipboard";
    case CaptureMethod::manual:
        break;
    }
    return "manual";
}

} // namespace tavik
