#include "UI/Widgets/CheckBox.h"

#include "UI/Widgets/Fonts.h"
#include "UI/Widgets/Icons.h"

#include <QFontMetrics>
#include <QPainter>
#include <algorithm>

namespace tavik {
namespace {

constexpr int boxSize = 18;
constexpr int markSize = 12;
constexpr int gap = 8;
constexpr int margin = 3;
constexpr double corner = 5;

} // namespace

CheckBox::CheckBox(const QString& text, const Theme& theme) : QCheckBox(text), colors(&theme) {
    setFont(uiFont(FontSizes::body));
    setCursor(Qt::PointingHandCursor);
}

void CheckBox::setTheme(const Theme& theme) {
    colors = &theme;
    update();
}

QSize CheckBox::sizeHint() const {
    const QSize words = fontMetrics().size(Qt::TextShowMnemonic, text());
    return {2 * margin + boxSize + gap + words.width(),
            2 * margin + std::max(boxSize, words.height())};
}

void CheckBox::paintEvent(QPaintEvent* /*event*/) {
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    const QRectF box(margin + 0.5, (height() - boxSize) / 2.0, boxSize - 1, boxSize - 1);
    const QColor& fill = isChecked() ? colors->accentFill : colors->section;
    painter.setBrush(isEnabled() ? fill : colors->section);
    painter.setPen(QPen(hasFocus() ? colors->accent : colors->secondaryText, hasFocus() ? 2 : 1));
    painter.drawRoundedRect(box, corner, corner);
    if (isChecked())
        painter.drawPixmap(box.center() - QPointF(markSize / 2.0, markSize / 2.0),
                           tintedPixmap("checkmark", markSize,
                                        isEnabled() ? colors->onAccent : colors->secondaryText,
                                        devicePixelRatioF()));
    painter.setPen(isEnabled() ? colors->text : colors->secondaryText);
    painter.drawText(rect().adjusted(margin + boxSize + gap, 0, 0, 0),
                     Qt::AlignVCenter | Qt::AlignLeft | Qt::TextShowMnemonic, text());
}

} // namespace tavik
