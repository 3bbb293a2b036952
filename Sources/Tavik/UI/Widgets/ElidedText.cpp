#include "UI/Widgets/ElidedText.h"

#include <QFontMetrics>

namespace tavik {

int paintElided(QPainter& painter, const QRect& place, const QFont& font, const QColor& color,
                const QString& text) {
    const QFontMetrics metrics(font);
    const QString shown = metrics.elidedText(text, Qt::ElideRight, place.width());
    painter.setFont(font);
    painter.setPen(color);
    painter.drawText(place, Qt::AlignVCenter | Qt::AlignLeft | Qt::TextSingleLine, shown);
    return place.left() + metrics.horizontalAdvance(shown);
}

} // namespace tavik
