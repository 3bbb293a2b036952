#pragma once

#include "UI/Widgets/Theme.h"

#include <QLineEdit>
#include <QString>

namespace tavik {

/// An empty line to be typed into. The prompt stands in it until then and is its name for screen
/// readers; `clearing` is that of the button that empties it.
QLineEdit* textField(const QString& prompt, const QString& clearing, int pixels);

/// Also for fields of times.
void setThemeOfField(QWidget& field, const Theme& theme);

} // namespace tavik
