#include "UI/Widgets/Paragraph.h"

#include <QKeyEvent>
#include <QTextBlockFormat>
#include <QTextCursor>
#include <QTextOption>
#include <QWheelEvent>
#include <algorithm>
#include <array>
#include <cmath>
#include <utility>

namespace tavik {
namespace {

constexpr int leastWidth = 80;

} // namespace

Paragraph::Paragraph(int pixels, int lineHeight) : lineHeight(lineHeight) {
    setFont(uiFont(pixels));
    setFrameShape(QFrame::NoFrame);
    setVerticalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    setWordWrapMode(QTextOption::WrapAtWordBoundaryOrAnywhere);
    setFocusPolicy(Qt::ClickFocus);
    setOpenLinks(false);
    viewport()->setAutoFillBackground(false);
    document()->setDocumentMargin(0);
    measured.setDocumentMargin(0);
    measured.setDefaultFont(font());
    measured.setDefaultTextOption(document()->defaultTextOption());
    QSizePolicy policy(QSizePolicy::Expanding, QSizePolicy::Preferred);
    policy.setHeightForWidth(true);
    setSizePolicy(policy);
}

void Paragraph::showHTML(const QString& html) {
    // What the user has selected in it stays.
    if (std::exchange(shown, html) == html) return;
    setText(*document(), html);
    setText(measured, html);
    updateGeometry();
}

void Paragraph::setText(QTextDocument& document, const QString& html) const {
    document.setHtml(html);
    QTextBlockFormat lines;
    lines.setLineHeight(lineHeight, QTextBlockFormat::ProportionalHeight);
    QTextCursor all(&document);
    all.select(QTextCursor::Document);
    all.mergeBlockFormat(lines);
}

int Paragraph::heightForWidth(int width) const {
    measured.setTextWidth(width);
    return static_cast<int>(std::ceil(measured.size().height()));
}

QSize Paragraph::sizeHint() const {
    return {leastWidth, heightForWidth(std::max(width(), leastWidth))};
}

QSize Paragraph::minimumSizeHint() const {
    return {leastWidth, 0};
}

void Paragraph::keyPressEvent(QKeyEvent* event) {
    // Without Shift such keys are for what the text stands in.
    constexpr std::array scrolling{Qt::Key_Up,       Qt::Key_Down, Qt::Key_PageUp,
                                   Qt::Key_PageDown, Qt::Key_Home, Qt::Key_End};
    const bool isScrolling = std::ranges::find(scrolling, event->key()) != scrolling.end();
    if (isScrolling && !event->modifiers().testFlag(Qt::ShiftModifier)) return event->ignore();
    QTextBrowser::keyPressEvent(event);
}

void Paragraph::wheelEvent(QWheelEvent* event) {
    event->ignore();
}

} // namespace tavik
