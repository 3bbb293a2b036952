#include "UI/Widgets/ThemeFollower.h"

#include <QEvent>
#include <utility>

namespace tavik {

ThemeFollower::ThemeFollower(QWidget& window, const Published<bool>& prefersDark,
                             std::function<void()> onChange)
    : prefersDark(prefersDark), changes(prefersDark.observe([this](bool) { timer.start(0); })) {
    timer.setSingleShot(true);
    connect(&timer, &QTimer::timeout, this, std::move(onChange));
    window.installEventFilter(this);
}

bool ThemeFollower::eventFilter(QObject* watched, QEvent* event) {
    if (event->type() == QEvent::ApplicationPaletteChange) timer.start(0);
    return QObject::eventFilter(watched, event);
}

} // namespace tavik
