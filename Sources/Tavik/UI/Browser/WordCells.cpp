#include "UI/Browser/WordCells.h"

#include "UI/Browser/VocabularyTable.h"
#include "UI/Widgets/ElidedText.h"
#include "UI/Widgets/Fonts.h"

#include <QPainter>

namespace tavik {
namespace {

constexpr int gap = 8;

} // namespace

void WordCells::paintGround(QPainter& painter, const QStyleOptionViewItem& option) const {
    const bool isSelected = option.state.testFlag(QStyle::State_Selected);
    painter.fillRect(option.rect, isSelected ? colors->blue.ground : colors->surface);
    painter.setPen(colors->border);
    painter.drawLine(option.rect.bottomLeft(), option.rect.bottomRight());
    const bool isFocused = option.state.testFlag(QStyle::State_HasFocus);
    if (isSelected && isFocused)
        painter.fillRect(QRect(option.rect.topLeft(), QSize(3, option.rect.height())),
                         colors->accentFill);
}

void WordCells::paint(QPainter* painter, const QStyleOptionViewItem& option,
                      const QModelIndex& index) const {
    painter->save();
    paintGround(*painter, option);
    QRect place = option.rect.adjusted(padding, 0, -padding, 0);
    const QString text = index.data().toString();
    const bool isSelected = option.state.testFlag(QStyle::State_Selected);
    const QColor& quiet = isSelected ? colors->text : colors->secondaryText;
    if (index.column() == VocabularyTable::wordColumn) {
        const int end = paintElided(*painter, place, uiFont(FontSizes::body, QFont::DemiBold),
                                    colors->text, text);
        place.setLeft(end + gap);
        if (place.width() > gap)
            paintElided(*painter, place, uiFont(FontSizes::secondary), quiet,
                        index.data(VocabularyTable::phoneticRole).toString());
    } else if (index.column() == VocabularyTable::glossColumn) {
        paintElided(*painter, place, uiFont(FontSizes::body), colors->text, text);
    } else {
        paintElided(*painter, place, uiFont(FontSizes::secondary), quiet, text);
    }
    painter->restore();
}

} // namespace tavik
