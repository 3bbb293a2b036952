#include "UI/Widgets/ProgressLine.h"

#include <QPainter>
#include <algorithm>

namespace tavik {
namespace {

constexpr int lineHeight = 6;

} // namespace

ProgressLine::ProgressLine() {
    setTextVisible(false);
    setFixedHeight(lineHeight);
}

QSize ProgressLine::sizeHint() const {
    return {QProgressBar::sizeHint().width(), lineHeight};
}

void ProgressLine::paintEvent(QPaintEvent* /*event*/) {
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(Qt::NoPen);
    painter.setBrush(palette().color(QPalette::Mid));
    const double corner = height() / 2.0;
    painter.drawRoundedRect(rect(), corner, corner);
    if (value() <= minimum()) return;
    const double share = double(value() - minimum()) / std::max(maximum() - minimum(), 1);
    painter.setBrush(palette().color(QPalette::Highlight));
    painter.drawRoundedRect(QRectF(0, 0, width() * share, height()), corner, corner);
}

} // namespace tavik
