#include "UI/Popup/PopupPanel.h"

#include <QBitmap>
#include <QGuiApplication>
#include <QKeyEvent>
#include <QMargins>
#include <QPainter>
#include <QScreen>
#include <QVBoxLayout>

namespace tavik {
namespace {

constexpr double corner = 12;
constexpr int shadowDepth = 20;
constexpr int shadowOffset = 6;

QMargins shadowMargins(bool isTranslucent) {
    if (!isTranslucent) return {};
    return {shadowDepth, shadowDepth - shadowOffset, shadowDepth, shadowDepth + shadowOffset};
}

void paintShadow(QPainter& painter, const QRectF& card, bool isDark) {
    painter.setPen(Qt::NoPen);
    painter.setBrush(QColor(8, 12, 20, isDark ? 9 : 3));
    // Ever closer rings, so that it fades away.
    for (int ring = 1; ring <= shadowDepth; ++ring) {
        const double share = static_cast<double>(ring) / shadowDepth;
        const double reach = shadowDepth * share * share;
        const QRectF place = card.adjusted(-reach, -reach, reach, reach);
        painter.drawRoundedRect(place.translated(0, shadowOffset * share), corner + reach,
                                corner + reach);
    }
}

} // namespace

PopupPanel::PopupPanel(std::unique_ptr<PopupView> content, bool isTranslucent, const Theme& theme)
    : QWidget(nullptr, Qt::ToolTip | Qt::FramelessWindowHint | Qt::WindowStaysOnTopHint),
      content(content.release()), isTranslucent(isTranslucent), colors(&theme) {
    setAttribute(Qt::WA_TranslucentBackground, isTranslucent);
    setAttribute(Qt::WA_ShowWithoutActivating);
    setFocusPolicy(Qt::StrongFocus);
    setWindowTitle(QStringLiteral("Tavik 释义"));
    auto* const layout = new QVBoxLayout(this);
    layout->setContentsMargins(shadowMargins(isTranslucent));
    layout->addWidget(this->content);
    setTheme(theme);
}

void PopupPanel::setTheme(const Theme& theme) {
    colors = &theme;
    setPalette(theme.palette());
    content->setTheme(theme);
    update();
}

QRect PopupPanel::card() const {
    return rect().marginsRemoved(shadowMargins(isTranslucent));
}

void PopupPanel::place(const ScreenRect& frame, const Screen& screen) {
    // Qt leaves the corner of a screen where it is and measures from there in its units.
    const QPoint origin(qRound(screen.frame.x), qRound(screen.frame.y));
    QScreen* const place = QGuiApplication::screenAt(origin);
    if (place != nullptr && place != this->screen()) setScreen(place);
    const QPoint corner = origin
                          + QPoint(qRound((frame.x - screen.frame.x) / screen.scale),
                                   qRound((frame.y - screen.frame.y) / screen.scale));
    const QSize size(qRound(frame.width / screen.scale), qRound(frame.height / screen.scale));
    setGeometry(QRect(corner, size).marginsAdded(shadowMargins(isTranslucent)));
}

ScreenRect PopupPanel::contentPlace() const {
    const double scale = devicePixelRatioF();
    const QRect card = this->card();
    return {card.x() * scale, card.y() * scale, card.width() * scale, card.height() * scale};
}

void PopupPanel::paintEvent(QPaintEvent* /*event*/) {
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    const QRectF place(card());
    // Without a shadow it is the edge that has to stand out, also where the corners are cut.
    const QColor edge = isTranslucent ? colors->border : colors->plainEdge;
    if (isTranslucent)
        paintShadow(painter, place, colors->isDark);
    else
        painter.fillRect(rect(), edge);
    painter.setBrush(colors->surface);
    painter.setPen(QPen(edge, 1));
    painter.drawRoundedRect(place.adjusted(0.5, 0.5, -0.5, -0.5), corner, corner);
}

void PopupPanel::resizeEvent(QResizeEvent* event) {
    QWidget::resizeEvent(event);
    if (isTranslucent) return;
    QBitmap shape(size());
    shape.fill(Qt::color0);
    QPainter painter(&shape);
    painter.setBrush(Qt::color1);
    painter.setPen(Qt::color1);
    painter.drawRoundedRect(rect().adjusted(0, 0, -1, -1), corner, corner);
    painter.end();
    setMask(shape);
}

void PopupPanel::keyPressEvent(QKeyEvent* event) {
    const int key = event->key();
    if (key == Qt::Key_Escape) {
        if (onEscape) onEscape();
    } else if (key == Qt::Key_Return || key == Qt::Key_Enter) {
        // One that is still held down was meant for the window before.
        if (!event->isAutoRepeat()) confirm();
    } else if (!content->scrollBy(key)) {
        QWidget::keyPressEvent(event);
    }
}

void PopupPanel::confirm() {
    if (auto* const button = qobject_cast<QAbstractButton*>(focusWidget()))
        button->click();
    else if (onReturn)
        onReturn();
}

} // namespace tavik
