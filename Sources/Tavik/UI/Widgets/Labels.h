#pragma once

#include <QFont>
#include <QLabel>
#include <QPalette>
#include <QString>

namespace tavik {

/// A label with a text, which is never taken for markup, in one of the palette's colours.
QLabel* textLabel(const QString& text, int pixels, QPalette::ColorRole color = QPalette::WindowText,
                  QFont::Weight weight = QFont::Normal);

} // namespace tavik
