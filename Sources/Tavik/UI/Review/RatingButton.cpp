#include "UI/Review/RatingButton.h"

#include "UI/Widgets/ActionButton.h"
#include "UI/Widgets/Fonts.h"

#include <QKeyEvent>
#include <QMouseEvent>
#include <QPainter>

namespace tavik {
namespace {

constexpr int buttonHeight = 64;
constexpr int leastWidth = 96;
constexpr int keyPlace = 20;
constexpr double corner = 10;

QString nameOf(Rating rating) {
    const auto name = label(rating);
    return QString::fromUtf8(name.data(), static_cast<qsizetype>(name.size()));
}

} // namespace

RatingButton::RatingButton(Rating rating, const Theme& theme) : rating(rating), colors(&theme) {
    setText(nameOf(rating));
    setFocusPolicy(Qt::TabFocus);
    setCursor(Qt::PointingHandCursor);
    setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Fixed);
    setAccessibleDescription(QStringLiteral("按 %1").arg(rawValue(rating)));
}

void RatingButton::showPreview(const std::string& preview) {
    this->preview = QString::fromStdString(preview);
    setAccessibleName(text() + QStringLiteral("，") + this->preview);
    update();
}

void RatingButton::setTheme(const Theme& theme) {
    colors = &theme;
    update();
}

QSize RatingButton::sizeHint() const {
    return {leastWidth, buttonHeight};
}

const Tint& RatingButton::tint() const {
    switch (rating) {
    case Rating::again:
        return colors->red;
    case Rating::hard:
        return colors->orange;
    case Rating::good:
        return colors->green;
    case Rating::easy:
        break;
    }
    return colors->blue;
}

void RatingButton::paintEvent(QPaintEvent* /*event*/) {
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    const QRectF whole = QRectF(rect()).adjusted(1, 1, -1, -1);
    painter.setPen(hasFocus() ? QPen(tint().text, 2) : QPen(Qt::NoPen));
    painter.setBrush(underMouse() || isDown() ? tint().hover : tint().ground);
    painter.drawRoundedRect(whole, corner, corner);
    painter.setPen(tint().text);
    const QRect inside = rect().adjusted(0, 10, 0, -10);
    painter.setFont(uiFont(FontSizes::body, QFont::DemiBold));
    painter.drawText(inside, Qt::AlignTop | Qt::AlignHCenter, text());
    painter.setFont(uiFont(FontSizes::secondary));
    painter.drawText(inside, Qt::AlignBottom | Qt::AlignHCenter, preview);
    painter.setFont(uiFont(FontSizes::secondary - 2));
    painter.drawText(QRect(6, 5, keyPlace, keyPlace), Qt::AlignTop | Qt::AlignLeft,
                     QString::number(rawValue(rating)));
}

void RatingButton::enterEvent(QEnterEvent* event) {
    QAbstractButton::enterEvent(event);
    update();
}

void RatingButton::leaveEvent(QEvent* event) {
    QAbstractButton::leaveEvent(event);
    update();
}

/// The first of the two clicks was for the button that showed the answer in the same place.
void RatingButton::mouseDoubleClickEvent(QMouseEvent* event) {
    event->accept();
}

void RatingButton::keyPressEvent(QKeyEvent* event) {
    if (!pressByReturn(*this, *event)) QAbstractButton::keyPressEvent(event);
}

} // namespace tavik
