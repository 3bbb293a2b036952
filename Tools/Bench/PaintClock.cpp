#include "PaintClock.h"

#include "Platform/Linux/X11/XCBHandles.h"

#include <QAbstractEventDispatcher>
#include <QEvent>
#include <QTimer>
#include <stdexcept>
#include <utility>

namespace tavik {
namespace {

constexpr std::chrono::seconds patience{10};

void awaitServer() {
    auto* const connection =
        qGuiApp->nativeInterface<QNativeInterface::QX11Application>()->connection();
    const XCBReply<xcb_get_input_focus_reply_t> answer(
        xcb_get_input_focus_reply(connection, xcb_get_input_focus(connection), nullptr));
}

} // namespace

void PaintClock::watch(const QWidget* watched) {
    window = watched;
    restart();
}

void PaintClock::restart() {
    painted.clear();
    lastDrawn = {};
}

void PaintClock::forget(const QWidget& widget) {
    painted.erase(&widget);
}

std::optional<PaintClock::Moment> PaintClock::firstDrawn(const QWidget& widget) const {
    const auto at = painted.find(&widget);
    return at == painted.end() ? std::nullopt : at->second;
}

PaintClock::Moment PaintClock::settle(const std::function<bool()>& isDone) {
    bool isLate = false;
    QTimer alarm;
    alarm.setSingleShot(true);
    connect(&alarm, &QTimer::timeout, [&isLate] { isLate = true; });
    alarm.start(patience);
    auto* const dispatcher = QAbstractEventDispatcher::instance();
    while (!isLate && !isDone())
        dispatcher->processEvents(QEventLoop::WaitForMoreEvents);
    while (!isLate && dispatcher->processEvents(QEventLoop::AllEvents)) {
    }
    if (isLate) throw std::runtime_error("the window does not do what is awaited");
    return lastDrawn;
}

bool PaintClock::notify(QObject* receiver, QEvent* event) {
    if (event->type() == QEvent::Paint) notePaint(*receiver);
    ++depth;
    const bool isHandled = QApplication::notify(receiver, event);
    // What is painted goes to the server before the outermost event ends.
    if (--depth == 0 && std::exchange(isFrameOpen, false)) endFrame();
    return isHandled;
}

void PaintClock::notePaint(const QObject& receiver) {
    const auto* const widget = qobject_cast<const QWidget*>(&receiver);
    if (window == nullptr || widget == nullptr || widget->window() != window) return;
    if (painting) painting(receiver);
    painted.try_emplace(&receiver);
    isFrameOpen = true;
}

void PaintClock::endFrame() {
    awaitServer();
    lastDrawn = Clock::now();
    for (auto& [widget, drawn] : painted)
        if (!drawn) drawn = lastDrawn;
}

} // namespace tavik
