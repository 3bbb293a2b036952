#include "PopupTrial.h"

#include "Holdings.h"

#include <nlohmann/json.hpp>

#include <QAbstractButton>
#include <QApplication>
#include <array>
#include <chrono>
#include <limits>
#include <optional>
#include <sstream>
#include <stdexcept>
#include <utility>

namespace tavik {
namespace {

using Milliseconds = std::chrono::duration<double, std::milli>;

/// As long as a user holds it.
constexpr std::chrono::milliseconds keyHold{60};
/// Between two popups of a flicker: a part of the time there is none.
constexpr std::chrono::milliseconds flickerPause{5};

constexpr std::array samples{
    "ubiquitous", "set",    "running", "gave up",
    "zzyzx",      "take",   "a",       "colorless green ideas sleep furiously tonight",
    "efficiency", "colour", "run out", "antidisestablishmentarianism",
};

double between(KeyPresser::Clock::time_point begin, KeyPresser::Clock::time_point end) {
    return Milliseconds(end - begin).count();
}

/// In units of layout from the top left of the desktop.
std::optional<QPoint> placeOfCloseButton() {
    for (const QWidget* const window : QApplication::topLevelWidgets()) {
        if (dynamic_cast<const PopupPanel*>(window) == nullptr || !window->isVisible()) continue;
        for (const auto* const button : window->findChildren<QAbstractButton*>())
            if (button->accessibleName() == QStringLiteral("关闭"))
                return button->mapToGlobal(button->rect().center());
    }
    return std::nullopt;
}

/// Each is elsewhere on the screen.
CaptureResult madeUpCapture(std::size_t number) {
    CaptureResult capture;
    capture.text = samples.at(number % samples.size());
    capture.sentence = "Nobody gave up on the ubiquitous idea of running everything at night.";
    capture.anchor = {static_cast<double>(100 + number * 37 % 900),
                      static_cast<double>(80 + number * 53 % 600), 60, 18};
    return capture;
}

} // namespace

PopupTrial::PopupTrial(AppEnvironment& env, const ShellPorts& ports, Answer answer)
    : env(env), answer(std::move(answer)), popup(env, ports.windowSystem, ports.mouse),
      hotKey(ports.hotKeyRegistrar) {
    if (!hotKey.register_(env.settings().hotKey.value(), [this] { startCapture(); }))
        throw std::runtime_error("the hot key is somebody else's");
    nextPopup.setSingleShot(true);
    QObject::connect(&nextPopup, &QTimer::timeout, [this] { showNext(); });
    keyRelease.setSingleShot(true);
    keyRelease.setInterval(keyHold);
    QObject::connect(&keyRelease, &QTimer::timeout, [this] { keys.release(); });
}

void PopupTrial::handle(const std::string& command) {
    std::istringstream words(command);
    std::string name;
    double x = 0;
    double y = 0;
    words >> name >> x >> y;
    if (name == "lookup") return begin();
    if (name == "hover") return showAt(x, y);
    if (name == "state") return tellState();
    if (name == "holdings") return tellHoldings();
    if (name == "soak" || name == "flicker") {
        isFlickering = name == "flicker";
        shown = 0;
        wanted =
            isFlickering ? std::numeric_limits<std::size_t>::max() : static_cast<std::size_t>(x);
        nextPopup.start(0);
        return isFlickering ? done() : void();
    }
    if (name == "calm") {
        watch.awaitPaint({});
        nextPopup.stop();
    }
    popup.close();
    done();
}

void PopupTrial::begin() {
    keyRelease.start();
    stages = {};
    stages.pressed = keys.press();
}

void PopupTrial::startCapture() {
    stages.acted = KeyPresser::Clock::now();
    captureTask = env.tasks().start<Captured>(
        [capture = env.capture()](const std::stop_token&) -> Captured {
            try {
                return capture.capture();
            } catch (const CaptureError& error) {
                return error;
            }
        },
        [this](const Captured& captured) { show(captured); });
}

void PopupTrial::show(const Captured& captured) {
    stages.captured = KeyPresser::Clock::now();
    if (const auto* const error = std::get_if<CaptureError>(&captured))
        return answer(nlohmann::json({{"error", error->what()}}).dump());
    const auto& result = std::get<CaptureResult>(captured);
    env.captureLog().write(result, env.now());
    watch.awaitPaint([this, result] { tellStages(result); });
    popup.show(result, false);
    stages.shown = KeyPresser::Clock::now();
}

void PopupTrial::tellStages(const CaptureResult& result) {
    const auto painted = KeyPresser::Clock::now();
    answer(nlohmann::json({{"text", result.text},
                           {"method", text(result.method)},
                           {"key", between(stages.pressed, stages.acted)},
                           {"capture", between(stages.acted, stages.captured)},
                           {"lookup", between(stages.captured, stages.shown)},
                           {"paint", between(stages.shown, painted)},
                           {"total", between(stages.pressed, painted)}})
               .dump());
}

void PopupTrial::showAt(double x, double y) {
    CaptureResult capture = madeUpCapture(0);
    capture.anchor = {x, y, 60, 18};
    watch.awaitPaint([this] { done(); });
    popup.show(capture, true);
}

void PopupTrial::showNext() {
    if (shown == wanted) return done();
    const bool isHover = isFlickering || shown % 2 == 0;
    watch.awaitPaint([this] {
        popup.close();
        ++shown;
        nextPopup.start(isFlickering ? flickerPause : std::chrono::milliseconds(0));
    });
    popup.show(madeUpCapture(shown), isHover);
}

void PopupTrial::tellState() {
    nlohmann::json state{{"visible", popup.isVisible()},
                         {"hover", popup.isHover()},
                         {"key", popup.isKey()},
                         {"focus", keys.focus()},
                         {"keyRelease", keyRelease.isActive()},
                         {"keyPresses", watch.keyPresses()}};
    if (const auto frame = popup.frame())
        state["frame"] = {frame->x, frame->y, frame->width, frame->height};
    if (const auto place = placeOfCloseButton()) state["closeButton"] = {place->x(), place->y()};
    answer(state.dump());
}

void PopupTrial::tellHoldings() {
    const Holdings holdings = presentHoldings(keys.connection());
    answer(nlohmann::json({{"resident", holdings.residentKilobytes},
                           {"heap", holdings.heapKilobytes},
                           {"descriptors", holdings.descriptors},
                           {"threads", holdings.threads},
                           {"windows", holdings.windows},
                           {"resources", holdings.resources}})
               .dump());
}

void PopupTrial::done() {
    answer(nlohmann::json({{"shown", shown}}).dump());
}

} // namespace tavik
