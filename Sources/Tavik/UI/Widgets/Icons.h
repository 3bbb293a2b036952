#pragma once

#include <QIcon>
#include <QPixmap>

namespace tavik {

/// The drawing called `name`, `size` device pixels square, on a transparent ground. Empty when
/// there is no such drawing.
QPixmap iconPixmap(const char* name, int size);

/// The drawing called `name` in the sizes that panels and windows ask for.
QIcon icon(const char* name);

} // namespace tavik
