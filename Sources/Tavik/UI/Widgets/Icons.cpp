#include "UI/Widgets/Icons.h"

#include "UI/Widgets/IconSizes.h"

#include <QPainter>
#include <QPixmapCache>
#include <QString>
#include <QSvgRenderer>

namespace tavik {

QPixmap iconPixmap(const char* name, int size) {
    QSvgRenderer drawing(QStringLiteral(":/icons/%1.svg").arg(QLatin1String(name)));
    if (!drawing.isValid()) return {};
    QPixmap pixmap(size, size);
    pixmap.fill(Qt::transparent);
    QPainter painter(&pixmap);
    drawing.render(&painter);
    return pixmap;
}

QIcon icon(const char* name) {
    QIcon icon;
    for (const int size : iconSizes)
        icon.addPixmap(iconPixmap(name, size));
    return icon;
}

QPixmap tintedPixmap(const char* name, int size, const QColor& color, double scale) {
    const int pixels = qRound(size * scale);
    const auto key = QStringLiteral("tavik-%1-%2-%3")
                         .arg(QLatin1String(name), color.name(QColor::HexArgb))
                         .arg(pixels);
    QPixmap pixmap;
    if (!QPixmapCache::find(key, &pixmap)) {
        pixmap = iconPixmap(name, pixels);
        QPainter painter(&pixmap);
        painter.setCompositionMode(QPainter::CompositionMode_SourceIn);
        painter.fillRect(pixmap.rect(), color);
        painter.end();
        QPixmapCache::insert(key, pixmap);
    }
    pixmap.setDevicePixelRatio(scale);
    return pixmap;
}

} // namespace tavik
