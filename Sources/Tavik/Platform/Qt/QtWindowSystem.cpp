#include "Platform/Qt/QtWindowSystem.h"

#include <QCursor>
#include <QGuiApplication>
#include <QScreen>
#include <QWindow>
#include <algorithm>

namespace tavik {
namespace {

ScreenPoint physical(QPoint place, const QScreen& screen) {
    const QPoint origin = screen.geometry().topLeft();
    const QPointF away = QPointF(place - origin) * screen.devicePixelRatio();
    return {origin.x() + away.x(), origin.y() + away.y()};
}

ScreenRect physical(const QRect& part, const QScreen& screen) {
    const ScreenPoint corner = physical(part.topLeft(), screen);
    const QSizeF size = QSizeF(part.size()) * screen.devicePixelRatio();
    return {corner.x, corner.y, size.width(), size.height()};
}

/// Null when it is none of ours.
QWindow* windowOf(std::uint32_t number) {
    const QWindowList windows = QGuiApplication::topLevelWindows();
    const auto found = std::ranges::find_if(windows, [number](QWindow* window) {
        // To ask for the number of a window that has none yet would make one.
        return window->handle() != nullptr && window->winId() == number;
    });
    return found == windows.end() ? nullptr : *found;
}

} // namespace

std::vector<Screen> QtWindowSystem::screens() {
    std::vector<Screen> found;
    for (const QScreen* screen : QGuiApplication::screens())
        found.push_back({physical(screen->geometry(), *screen),
                         physical(screen->availableGeometry(), *screen),
                         screen->devicePixelRatio()});
    return found;
}

ScreenPoint QtWindowSystem::pointer() {
    const QPoint place = QCursor::pos();
    const QScreen* screen = QGuiApplication::screenAt(place);
    if (screen == nullptr) screen = QGuiApplication::primaryScreen();
    if (screen == nullptr) return {};
    return physical(place, *screen);
}

/// Qt's mask would cut off what is painted, too, so a shadow at the edge catches clicks here.
void QtWindowSystem::limitClicks(std::uint32_t, const ScreenRect&) {}

void QtWindowSystem::takeKeyboard(std::uint32_t window) {
    if (QWindow* ours = windowOf(window)) ours->requestActivate();
}

} // namespace tavik
