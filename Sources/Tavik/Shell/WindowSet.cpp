#include "Shell/WindowSet.h"

#include "UI/Widgets/Icons.h"

#include <QCursor>
#include <QGuiApplication>
#include <QScreen>

namespace tavik {
namespace {

Qt::WindowFlags flagsOf(const WindowSet::Style& style) {
    Qt::WindowFlags flags = Qt::Window | Qt::CustomizeWindowHint | Qt::WindowTitleHint
                            | Qt::WindowSystemMenuHint | Qt::WindowCloseButtonHint;
    if (style.isResizable) flags |= Qt::WindowMinMaxButtonsHint;
    if (style.isFloating) flags |= Qt::WindowStaysOnTopHint;
    return flags;
}

/// In the middle of the screen where the user works, and no larger than it.
void placeNew(QWidget& window) {
    const QScreen* screen = QGuiApplication::screenAt(QCursor::pos());
    if (screen == nullptr) screen = window.screen();
    const QRect room = screen->availableGeometry();
    window.resize(window.sizeHint().boundedTo(room.size() * 9 / 10));
    window.move(room.center() - window.rect().center());
}

} // namespace

WindowSet::~WindowSet() {
    for (const auto& [id, window] : windows)
        delete window.data();
    for (const auto& window : replaced)
        delete window.data();
}

QWidget& WindowSet::present(const std::string& id, const Style& style, const Content& makeContent) {
    QPointer<QWidget>& place = windows[id];
    if (place && style.isRecreated) putAway(*place);
    if (!place || style.isRecreated) {
        place = makeContent().release();
        place->setWindowFlags(flagsOf(style));
        place->setWindowTitle(style.title);
        place->setWindowIcon(icon("character.book.closed.fill"));
        placeNew(*place);
    }
    bringToFront(*place);
    return *place;
}

void WindowSet::bringToFront(QWidget& window) {
    window.show();
    window.setWindowState(window.windowState() & ~Qt::WindowMinimized);
    window.raise();
    window.activateWindow();
    windowSystem.bringToFront(static_cast<std::uint32_t>(window.winId()));
}

void WindowSet::putAway(QWidget& window) {
    window.close();
    window.deleteLater();
    std::erase_if(replaced, [](const auto& each) { return each.isNull(); });
    replaced.emplace_back(&window);
}

bool WindowSet::isVisible(const std::string& id) const {
    const QWidget* const found = window(id);
    return found != nullptr && found->isVisible();
}

QWidget* WindowSet::window(const std::string& id) const {
    const auto at = windows.find(id);
    return at == windows.end() ? nullptr : at->second.data();
}

} // namespace tavik
