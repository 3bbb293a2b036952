#pragma once

#include <QColor>
#include <QFont>
#include <QPainter>
#include <QRect>
#include <QString>

namespace tavik {

/// Paints a line of text, cut off where there is no room for it; returns where it ends.
int paintElided(QPainter& painter, const QRect& place, const QFont& font, const QColor& color,
                const QString& text);

} // namespace tavik
