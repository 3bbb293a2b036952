#pragma once

#include <QColor>
#include <QPalette>

namespace tavik {

/// A quiet ground in one hue and what stands on it.
struct Tint {
    QColor ground;
    QColor hover;
    QColor text;
};

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
    Tint red;
    Tint orange;
    Tint green;
    Tint blue;
    bool isDark = false;

    /// For widgets that draw themselves, and for all below them that have no palette of their own.
    /// `secondaryText` stands under `PlaceholderText`, `accent` under `Link`.
    QPalette palette() const;
};

const Theme& theme(bool isDark);

/// Whether what the desktop told Qt makes windows dark.
bool hasDarkPalette();

/// The theme of a desktop that says so or has a dark palette.
const Theme& currentTheme(bool prefersDark);

} // namespace tavik
