#pragma once

#include "Base/Published.h"
#include "UI/Widgets/Theme.h"

#include <QObject>
#include <QTimer>
#include <QWidget>
#include <functional>

namespace tavik {

/// Tells a window when the theme may have become another one, be it by what the desktop says or by
/// the palette that it gives to Qt: in the next turn of the event loop, when both can be read, and
/// once for all changes of one turn.
class ThemeFollower final : public QObject {
public:
    /// Window and value must outlive the follower.
    ThemeFollower(QWidget& window, const Published<bool>& prefersDark,
                  std::function<void()> onChange);

    /// As it is now.
    const Theme& theme() const { return currentTheme(prefersDark.value()); }

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    const Published<bool>& prefersDark;
    QTimer timer;
    Subscription changes;
};

} // namespace tavik
