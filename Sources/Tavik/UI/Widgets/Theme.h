#pragma once

#include <QColor>
#include <QPalette>

namespace tavik {

/// The named colours of all windows. Every text stands out from its ground by 4.5 to 1 at least.
struct Theme {
    QColor surface;
    QColor border;
    /// Of a window without a shadow.
    QColor plainEdge;
    QColor text;
    QColor secondaryText;
    /// Of words that are pointed out, and of what can be chosen.
    QColor accent;
    /// A ground for `onAccent`.
    QColor accentFill;
    QColor accentFillHover;
    QColor onAccent;
    QColor partOfSpeech;
    /// The ground of a part that is set apart.
    QColor section;
    QColor controlBorder;
    QColor hover;
    QColor danger;
    bool isDark = false;

    /// For widgets that draw themselves.
    QPalette palette() const;
};

const Theme& theme(bool isDark);

/// Whether what the desktop told Qt makes windows dark.
bool hasDarkPalette();

} // namespace tavik
