#include "UI/Widgets/Fonts.h"

#include <QString>
#include <QStringList>

namespace tavik {

QFont uiFont(int pixels, QFont::Weight weight) {
    QFont font(QStringList{QStringLiteral("Noto Sans"), QStringLiteral("Noto Sans CJK SC")});
    font.setPixelSize(pixels);
    font.setWeight(weight);
    return font;
}

} // namespace tavik
