#include "UI/Widgets/Icons.h"

#include "UI/Widgets/IconSizes.h"

#include <QPainter>
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

} // namespace tavik
