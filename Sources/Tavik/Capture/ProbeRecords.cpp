#include "Capture/ProbeRecords.h"

namespace tavik {

std::string_view text(ProbeReader reader) {
    switch (reader) {
    case ProbeReader::axMarker:
        return "ax-marker";
    case ProbeReader::axText:
        return "ax-text";
    case ProbeReader::selection:
        return "selection";
    case ProbeReader::clipboard:
        return "clipboard";
    case ProbeReader::none:
        break;
    }
    return "none";
}

std::string_view text(ProbeAdvice advice) {
    switch (advice) {
    case ProbeAdvice::selectSomething:
        return "selectSomething";
    case ProbeAdvice::useSelection:
        return "useSelection";
    case ProbeAdvice::startOption:
        return "startOption";
    case ProbeAdvice::restart:
        return "restart";
    case ProbeAdvice::clipboardOnly:
        return "clipboardOnly";
    case ProbeAdvice::notResponding:
        return "notResponding";
    case ProbeAdvice::passwordField:
        return "passwordField";
    case ProbeAdvice::notAsked:
        return "notAsked";
    case ProbeAdvice::none:
        break;
    }
    return "none";
}

} // namespace tavik
