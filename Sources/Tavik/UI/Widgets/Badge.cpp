#include "UI/Widgets/Badge.h"

#include "UI/Widgets/Fonts.h"

#include <QPainter>

namespace tavik {
namespace {

constexpr int sidePadding = 10;
constexpr int verticalPadding = 4;

} // namespace

Badge::Badge(Color color, const Theme& theme) : color(color), colors(&theme) {
    setFont(uiFont(FontSizes::secondary));
    setTextFormat(Qt::PlainText);
    setContentsMargins(sidePadding, verticalPadding, sidePadding, verticalPadding);
    setSizePolicy(QSizePolicy::Fixed, QSizePolicy::Fixed);
    setTheme(theme);
}

void Badge::setTheme(const Theme& theme) {
    colors = &theme;
    QPalette palette = colors->palette();
    palette.setColor(QPalette::WindowText, (colors->*color).text);
    setPalette(palette);
}

void Badge::paintEvent(QPaintEvent* event) {
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(Qt::NoPen);
    painter.setBrush((colors->*color).ground);
    const double corner = height() / 2.0;
    painter.drawRoundedRect(rect(), corner, corner);
    painter.end();
    QLabel::paintEvent(event);
}

} // namespace tavik
