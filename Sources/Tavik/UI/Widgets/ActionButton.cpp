#include "UI/Widgets/ActionButton.h"

#include "UI/Widgets/CheckBox.h"
#include "UI/Widgets/Fonts.h"
#include "UI/Widgets/Icons.h"

#include <QFontMetrics>
#include <QKeyEvent>
#include <QPainter>
#include <cmath>

namespace tavik {
namespace {

constexpr int drawingSize = 16;
constexpr int iconOnlySize = 28;
constexpr int buttonHeight = 34;
constexpr int sidePadding = 12;
constexpr int gap = 6;
constexpr int linkPadding = 2;
constexpr int leastLinkWidth = 40;
constexpr double corner = 7;

} // namespace

bool pressByReturn(QAbstractButton& button, const QKeyEvent& event) {
    if (event.key() != Qt::Key_Return && event.key() != Qt::Key_Enter) return false;
    // A held key was meant for what had the focus before.
    if (!event.isAutoRepeat()) button.click();
    return true;
}

ActionButton::ActionButton(Style style, const Theme& theme) : style(style), colors(&theme) {
    setFont(
        uiFont(FontSizes::secondary, style == Style::primary ? QFont::DemiBold : QFont::Normal));
    setFocusPolicy(Qt::TabFocus);
    setCursor(Qt::PointingHandCursor);
    setSizePolicy(style == Style::link ? QSizePolicy::Maximum : QSizePolicy::Fixed,
                  QSizePolicy::Fixed);
}

void ActionButton::show(const char* drawing, const QString& text) {
    this->drawing = drawing;
    setText(text);
    // What stands before "&" in a name is no key.
    setShortcut({});
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
    const QFontMetricsF metrics(font());
    const int textWidth = static_cast<int>(std::ceil(metrics.horizontalAdvance(text())));
    if (style == Style::link)
        return {textWidth + 2 * linkPadding, static_cast<int>(metrics.height()) + 4};
    return {2 * sidePadding + drawingRoom() + textWidth, buttonHeight};
}

int ActionButton::drawingRoom() const {
    return drawing.empty() ? 0 : drawingSize + gap;
}

QSize ActionButton::minimumSizeHint() const {
    return style == Style::link ? QSize(leastLinkWidth, sizeHint().height()) : sizeHint();
}

QColor ActionButton::ground() const {
    const bool isPointedAt = underMouse() && isEnabled();
    if (style == Style::primary && !isEnabled()) return colors->section;
    if (style == Style::primary) return isPointedAt ? colors->accentFillHover : colors->accentFill;
    if (isDown()) return colors->section;
    return isPointedAt ? colors->hover : QColor(Qt::transparent);
}

QColor ActionButton::foreground() const {
    if (style == Style::iconOnly || !isEnabled()) return colors->secondaryText;
    if (style == Style::primary) return colors->onAccent;
    return style == Style::destructive ? colors->danger : colors->text;
}

void ActionButton::paintFocus(QPainter& painter, const QRectF& whole) const {
    if (!hasFocus()) return;
    painter.setBrush(Qt::NoBrush);
    const bool isOnAccent = style == Style::primary;
    painter.setPen(QPen(isOnAccent ? colors->onAccent : colors->accent, 2));
    const double inset = isOnAccent ? 2.5 : 1;
    painter.drawRoundedRect(whole.adjusted(inset, inset, -inset, -inset), corner - inset,
                            corner - inset);
}

void ActionButton::paintLink(QPainter& painter) const {
    QFont underlined = font();
    underlined.setUnderline(underMouse());
    painter.setFont(underlined);
    painter.setPen(colors->accent);
    const QRect place = rect().adjusted(linkPadding, 0, -linkPadding, 0);
    const QString shown =
        QFontMetrics(underlined).elidedText(text(), Qt::ElideMiddle, place.width());
    painter.drawText(place, Qt::AlignVCenter | Qt::AlignLeft, shown);
}

void ActionButton::paintEvent(QPaintEvent* /*event*/) {
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    const QRectF whole = QRectF(rect()).adjusted(0.5, 0.5, -0.5, -0.5);
    if (style == Style::link) {
        paintFocus(painter, whole);
        return paintLink(painter);
    }
    painter.setBrush(ground());
    const bool hasEdge = style == Style::bordered || style == Style::destructive;
    painter.setPen(hasEdge ? QPen(colors->controlBorder, 1) : QPen(Qt::NoPen));
    painter.drawRoundedRect(whole, corner, corner);
    paintFocus(painter, whole);
    const bool isIconOnly = style == Style::iconOnly;
    const int iconLeft = isIconOnly ? (width() - drawingSize) / 2 : sidePadding;
    const QRect iconPlace(iconLeft, (height() - drawingSize) / 2, drawingSize, drawingSize);
    if (!drawing.empty())
        painter.drawPixmap(iconPlace, tintedPixmap(drawing.c_str(), drawingSize, foreground(),
                                                   devicePixelRatioF()));
    if (isIconOnly) return;
    painter.setPen(foreground());
    const QRect textPlace = rect().adjusted(sidePadding + drawingRoom(), 0, 0, 0);
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

void ActionButton::keyPressEvent(QKeyEvent* event) {
    if (pressByReturn(*this, *event)) return;
    QAbstractButton::keyPressEvent(event);
}

void setThemeOfButtons(const QWidget& parent, const Theme& theme) {
    // Qt tells only those classes apart that have a meta-object of their own.
    for (auto* const child : parent.findChildren<QAbstractButton*>())
        if (auto* const button = dynamic_cast<ActionButton*>(child))
            button->setTheme(theme);
        else if (auto* const box = dynamic_cast<CheckBox*>(child))
            box->setTheme(theme);
}

} // namespace tavik
