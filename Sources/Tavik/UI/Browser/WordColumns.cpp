#include "UI/Browser/WordColumns.h"

#include "UI/Browser/WordCells.h"
#include "UI/Widgets/Fonts.h"

#include <QPainter>

namespace tavik {
namespace {

constexpr int headerHeight = 32;

} // namespace

WordColumns::WordColumns() : QHeaderView(Qt::Horizontal) {
    setFont(uiFont(FontSizes::secondary));
    setHighlightSections(false);
    setSectionsMovable(false);
}

QSize WordColumns::sizeHint() const {
    return {QHeaderView::sizeHint().width(), headerHeight};
}

void WordColumns::paintSection(QPainter* painter, const QRect& rect, int section) const {
    painter->fillRect(rect, palette().color(QPalette::Window));
    painter->setPen(palette().color(QPalette::Mid));
    painter->drawLine(rect.bottomLeft(), rect.bottomRight());
    painter->setPen(palette().color(QPalette::PlaceholderText));
    painter->setFont(font());
    const QRect place = rect.adjusted(WordCells::padding, 0, -WordCells::padding, 0);
    painter->drawText(place, Qt::AlignVCenter | Qt::AlignLeft | Qt::TextSingleLine,
                      model()->headerData(section, Qt::Horizontal).toString());
}

} // namespace tavik
