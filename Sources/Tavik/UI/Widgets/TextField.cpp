#include "UI/Widgets/TextField.h"

#include "UI/Widgets/Fonts.h"

#include <QAbstractButton>

namespace tavik {

QLineEdit* textField(const QString& prompt, const QString& clearing, int pixels) {
    auto* const field = new QLineEdit;
    field->setFont(uiFont(pixels));
    field->setPlaceholderText(prompt);
    field->setAccessibleName(prompt);
    field->setClearButtonEnabled(true);
    for (auto* const button : field->findChildren<QAbstractButton*>())
        button->setAccessibleName(clearing);
    return field;
}

void setThemeOfField(QWidget& field, const Theme& theme) {
    field.setStyleSheet(
        QStringLiteral("QLineEdit, QTimeEdit { background: %1; border: 1px solid %2;"
                       " border-radius: 7px; padding: 5px 8px; }"
                       "QLineEdit:focus, QTimeEdit:focus { border-color: %3; }"
                       "QTimeEdit > QLineEdit { border: none; padding: 0; }"
                       "*:disabled { color: %4; }")
            .arg(theme.section.name(), theme.controlBorder.name(), theme.accent.name(),
                 theme.secondaryText.name()));
}

} // namespace tavik
