#include "UI/Widgets/ThinScrollBar.h"

#include <QAbstractScrollArea>
#include <QPainter>
#include <QStyleOptionSlider>
#include <map>
#include <memory>

namespace tavik {
namespace {

constexpr int barWidth = 10;
constexpr int inset = 2;

} // namespace

ThinScrollBar::ThinScrollBar() : QScrollBar(Qt::Vertical) {}

QSize ThinScrollBar::sizeHint() const {
    return {barWidth, QScrollBar::sizeHint().height()};
}

void ThinScrollBar::paintEvent(QPaintEvent* /*event*/) {
    QStyleOptionSlider option;
    initStyleOption(&option);
    const QRect handle =
        style()->subControlRect(QStyle::CC_ScrollBar, &option, QStyle::SC_ScrollBarSlider, this);
    QPainter painter(this);
    painter.fillRect(rect(), palette().color(QPalette::Window));
    if (maximum() <= minimum()) return;
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(Qt::NoPen);
    painter.setBrush(palette().color(underMouse() ? QPalette::PlaceholderText : QPalette::Mid));
    const QRect shown = handle.adjusted(inset, 0, -inset, 0);
    const double corner = shown.width() / 2.0;
    painter.drawRoundedRect(shown, corner, corner);
}

void ThinScrollBar::enterEvent(QEnterEvent* event) {
    QScrollBar::enterEvent(event);
    update();
}

void ThinScrollBar::leaveEvent(QEvent* event) {
    QScrollBar::leaveEvent(event);
    update();
}

void scrollVertically(QAbstractScrollArea& area) {
    area.setFrameShape(QFrame::NoFrame);
    area.setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    area.setVerticalScrollBar(std::make_unique<ThinScrollBar>().release());
}

bool scrollByKey(QAbstractScrollArea& area, int key) {
    static const std::map<int, QAbstractSlider::SliderAction> steps{
        {Qt::Key_Up, QAbstractSlider::SliderSingleStepSub},
        {Qt::Key_Down, QAbstractSlider::SliderSingleStepAdd},
        {Qt::Key_PageUp, QAbstractSlider::SliderPageStepSub},
        {Qt::Key_PageDown, QAbstractSlider::SliderPageStepAdd},
        {Qt::Key_Home, QAbstractSlider::SliderToMinimum},
        {Qt::Key_End, QAbstractSlider::SliderToMaximum}};
    const auto found = steps.find(key);
    if (found == steps.end()) return false;
    area.verticalScrollBar()->triggerAction(found->second);
    return true;
}

} // namespace tavik
