#include "UI/Quick/SuggestionCells.h"

#include "UI/Quick/SuggestionRows.h"
#include "UI/Widgets/ElidedText.h"
#include "UI/Widgets/Fonts.h"

#include <QPainter>

namespace tavik {
namespace {

constexpr int sidePadding = 10;
constexpr int gap = 10;
constexpr double corner = 6;
/// Of a row, at most, for a phrase that would leave its meaning no room.
constexpr double greatestWordShare = 0.6;

} // namespace

/// As wide as the list.
QSize SuggestionCells::sizeHint(const QStyleOptionViewItem& /*option*/,
                                const QModelIndex& /*index*/) const {
    return {0, rowHeight};
}

void SuggestionCells::paint(QPainter* painter, const QStyleOptionViewItem& option,
                            const QModelIndex& index) const {
    painter->save();
    painter->setRenderHint(QPainter::Antialiasing);
    const bool isCurrent = option.state.testFlag(QStyle::State_Selected);
    const bool isUnderMouse = option.state.testFlag(QStyle::State_MouseOver);
    if (isCurrent || isUnderMouse) {
        painter->setPen(Qt::NoPen);
        painter->setBrush(isCurrent ? colors->blue.ground : colors->hover);
        painter->drawRoundedRect(option.rect, corner, corner);
    }
    QRect place = option.rect.adjusted(sidePadding, 0, -sidePadding, 0);
    QRect wordPlace = place;
    wordPlace.setWidth(static_cast<int>(place.width() * greatestWordShare));
    const int end = paintElided(*painter, wordPlace, uiFont(FontSizes::body, QFont::DemiBold),
                                colors->text, index.data().toString());
    place.setLeft(end + gap);
    paintElided(*painter, place, uiFont(FontSizes::secondary),
                isCurrent ? colors->text : colors->secondaryText,
                index.data(SuggestionRows::glossRole).toString());
    painter->restore();
}

} // namespace tavik
