#include "UI/Widgets/ActionButton.h"

#include "UI/Widgets/Fonts.h"
#include "UI/Widgets/Icons.h"

#include <QFontMetrics>
#include <QPainter>

namespace tavik {
namespace {

constexpr int drawingSize = 16;
constexpr int iconOnlySize = 28;
constexpr int buttonHeight = 34;
constexpr int sidePadding = 12;
constexpr int gap = 6;
constexpr double corner = 7;

} // namespace

ActionButton::ActionButton(Style style, const Theme& theme) : style(style), colors(&theme) {
    setFont(
        uiFont(FontSizes::secondary, style == Style::primary ? QFont::DemiBold : QFont::Normal));
    setFocusPolicy(Qt::TabFocus);
    setCursor(Qt::PointingHandCursor);
    setSizePolicy(QSizePolicy::Fixed, QSizePolicy::Fixed);
}

void ActionButton::show(const char* drawing, const QString& text) {
    this->drawing = drawing;
    setText(text);
    setAccessibleName(text);
    if (style == Style::iconOnly) setToolTip(text);
    updateGeometry();
    update();
}

void ActionButton::setTheme(const Theme& theme) {
    colors = &theme;
    update();
}

QSize ActionButton::sizeHint() const {
    if (style == Style::iconOnly) return {iconOnlySize, iconOnlySize};
    const int textWidth = QFontMetrics(font()).horizontalAdvance(text());
    return {2 * sidePadding + drawingSize + gap + textWidth, buttonHeight};
}

QColor ActionButton::ground() const {
    const bool isPointedAt = underMouse() && isEnabled();
    if (style == Style::primary) return isPointedAt ? colors->accentFillHover : colors->accentFill;
    if (isDown()) return colors->section;
    return isPointedAt ? colors->hover : QColor(Qt::transparent);
}

QColor ActionButton::foreground() const {
    if (style == Style::primary) return colors->onAccent;
    return style == Style::iconOnly || !isEnabled() ? colors->secondaryText : colors->text;
}

void ActionButton::paintEvent(QPaintEvent* /*event*/) {
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    const QRectF whole = QRectF(rect()).adjusted(0.5, 0.5, -0.5, -0.5);
    painter.setBrush(ground());
    painter.setPen(style == Style::bordered ? QPen(colors->controlBorder, 1) : QPen(Qt::NoPen));
    painter.drawRoundedRect(whole, corner, corner);
    if (hasFocus()) {
        painter.setBrush(Qt::NoBrush);
        const bool isOnAccent = style == Style::primary;
        painter.setPen(QPen(isOnAccent ? colors->onAccent : colors->accent, 2));
        const double inset = isOnAccent ? 2.5 : 1;
        painter.drawRoundedRect(whole.adjusted(inset, inset, -inset, -inset), corner - inset,
                                corner - inset);
    }
    const bool isIconOnly = style == Style::iconOnly;
    const int iconLeft = isIconOnly ? (width() - drawingSize) / 2 : sidePadding;
    const QRect iconPlace(iconLeft, (height() - drawingSize) / 2, drawingSize, drawingSize);
    painter.drawPixmap(
        iconPlace, tintedPixmap(drawing.c_str(), drawingSize, foreground(), devicePixelRatioF()));
    if (isIconOnly) return;
    painter.setPen(foreground());
    const QRect textPlace = rect().adjusted(sidePadding + drawingSize + gap, 0, 0, 0);
    painter.drawText(textPlace, Qt::AlignVCenter | Qt::AlignLeft, text());
}

void ActionButton::enterEvent(QEnterEvent* event) {
    QAbstractButton::enterEvent(event);
    update();
}

void ActionButton::leaveEvent(QEvent* event) {
    QAbstractButton::leaveEvent(event);
    update();
}

} // namespace tavik
