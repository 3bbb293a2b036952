#include "UI/Widgets/Labels.h"

#include "UI/Widgets/Fonts.h"

namespace tavik {

QLabel* textLabel(const QString& text, int pixels, QPalette::ColorRole color,
                  QFont::Weight weight) {
    auto* const label = new QLabel(text);
    label->setFont(uiFont(pixels, weight));
    label->setTextFormat(Qt::PlainText);
    label->setForegroundRole(color);
    return label;
}

} // namespace tavik
