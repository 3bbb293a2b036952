#include "Shell/StatusIcon.h"

#include "Shell/StatusTexts.h"
#include "UI/Widgets/Fonts.h"
#include "UI/Widgets/IconSizes.h"
#include "UI/Widgets/Icons.h"

#include <QFontMetricsF>
#include <QPainter>
#include <QString>
#include <algorithm>

namespace tavik {
namespace {

constexpr const char* drawing = "character.book.closed.fill";

/// Draws the badge into the lower right corner.
void drawBadge(QPixmap& pixmap, const QString& text) {
    const double size = pixmap.width();
    const double height = size * 0.56;
    const QFont font = uiFont(std::max(7, static_cast<int>(height * 0.86)), QFont::Bold);
    const double textWidth = QFontMetricsF(font).horizontalAdvance(text);
    const double width = std::min(size, std::max(height, textWidth + height * 0.4));
    const QRectF badge(size - width, size - height, width, height);
    QPainter painter(&pixmap);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(Qt::NoPen);
    painter.setBrush(QColor(0xd7, 0x2b, 0x2b));
    painter.drawRoundedRect(badge, height / 2, height / 2);
    painter.setFont(font);
    painter.setPen(Qt::white);
    painter.drawText(badge, Qt::AlignCenter | Qt::TextDontClip, text);
}

} // namespace

QIcon statusIcon(std::int64_t dueNow) {
    const QString badge = QString::fromStdString(statusBadge(dueNow));
    QIcon icon;
    for (const int size : iconSizes) {
        QPixmap pixmap = iconPixmap(drawing, size);
        if (!badge.isEmpty()) drawBadge(pixmap, badge);
        icon.addPixmap(pixmap);
    }
    return icon;
}

} // namespace tavik
