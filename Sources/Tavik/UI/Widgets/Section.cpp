#include "UI/Widgets/Section.h"

#include <QPainter>

namespace tavik {
namespace {

constexpr double corner = 8;

} // namespace

void Section::setTheme(const Theme& theme) {
    colors = &theme;
    update();
}

void Section::paintEvent(QPaintEvent* /*event*/) {
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(Qt::NoPen);
    painter.setBrush(colors->section);
    painter.drawRoundedRect(rect(), corner, corner);
}

} // namespace tavik
