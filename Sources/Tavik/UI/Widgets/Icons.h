#pragma once

#include <QColor>
#include <QIcon>
#include <QPixmap>

namespace tavik {

/// The drawing called `name`, `size` device pixels square, on a transparent ground. Empty when
/// there is no such drawing.
QPixmap iconPixmap(const char* name, int size);

/// The drawing called `name` in the sizes that panels and windows ask for.
QIcon icon(const char* name);

/// The drawing called `name` in one colour, `size` units square, for a screen of `scale` device
/// pixels to the unit.
QPixmap tintedPixmap(const char* name, int size, const QColor& color, double scale);

} // namespace tavik
