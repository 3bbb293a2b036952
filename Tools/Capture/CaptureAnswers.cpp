#include "CaptureAnswers.h"

#include "Capture/CaptureError.h"

#include <nlohmann/json.hpp>

#include <chrono>
#include <optional>
#include <vector>

namespace tavik {
namespace {

using nlohmann::json;

json jsonFrom(const std::optional<std::string>& text) {
    return text ? json(*text) : json(nullptr);
}

json jsonFrom(const std::optional<ScreenRect>& anchor, Workspace& workspace) {
    const auto screens = anchor ? workspace.screens() : std::vector<ScreenRect>();
    if (screens.empty()) return nullptr;
    const double bottom = screens.front().y + screens.front().height;
    return {{"x", anchor->x},
            {"y", bottom - anchor->y - anchor->height},
            {"width", anchor->width},
            {"height", anchor->height}};
}

json jsonFrom(const CaptureResult& result, Workspace& workspace) {
    return {{"text", result.text},
            {"sentence", jsonFrom(result.sentence)},
            {"app", jsonFrom(result.source.appName)},
            {"id", jsonFrom(result.source.bundleID)},
            {"url", jsonFrom(result.source.url)},
            {"anchor", jsonFrom(result.anchor, workspace)},
            {"method", text(result.method)}};
}

json jsonFrom(const CaptureError& error) {
    const bool isTrusted = error.kind() != CaptureError::Kind::notTrusted;
    return {{"error", isTrusted ? "nothingSelected" : "notTrusted"}};
}

} // namespace

CaptureAnswers::CaptureAnswers()
    : workspace([this](const std::string& identifier, const std::string& windowClass) {
          return entries.name(identifier, windowClass);
      }),
      capture({accessibility, workspace, pasteboard, processes, [] { return true; },
               [](const std::string&) {}}) {}

std::string CaptureAnswers::next() {
    const auto start = std::chrono::steady_clock::now();
    json answer;
    std::optional<CaptureResult> result;
    try {
        result = capture.capture();
    } catch (const CaptureError& error) {
        answer = jsonFrom(error);
    }
    const std::chrono::duration<double, std::milli> time = std::chrono::steady_clock::now() - start;
    if (result) answer = jsonFrom(*result, workspace);
    answer["ms"] = time.count();
    return answer.dump(-1, ' ', false, json::error_handler_t::replace);
}

} // namespace tavik
