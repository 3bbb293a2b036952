#pragma once

#include <QAbstractButton>
#include <QApplication>
#include <QKeyEvent>
#include <QLabel>
#include <QTextEdit>
#include <QWidget>
#include <stdexcept>
#include <string>
#include <vector>

namespace tavik::test {

/// Runs the event loop until it is idle.
inline void settle() {
    for (int turn = 0; turn < 5; ++turn)
        QApplication::processEvents();
}

/// What can be read in a window: labels, paragraphs and the names of buttons.
inline std::vector<std::string> textsOf(const QWidget& window) {
    settle();
    std::vector<std::string> texts;
    for (const QWidget* const widget : window.findChildren<QWidget*>()) {
        if (!widget->isVisible()) continue;
        if (const auto* const label = qobject_cast<const QLabel*>(widget))
            texts.push_back(label->text().toStdString());
        else if (const auto* const paragraph = qobject_cast<const QTextEdit*>(widget))
            texts.push_back(paragraph->toPlainText().toStdString());
        else if (const auto* const button = qobject_cast<const QAbstractButton*>(widget))
            texts.push_back(button->text().toStdString());
    }
    return texts;
}

/// The visible button with that text.
inline QAbstractButton& buttonOf(const QWidget& window, const QString& text) {
    settle();
    for (auto* const button : window.findChildren<QAbstractButton*>())
        if (button->isVisible() && button->text() == text) return *button;
    throw std::runtime_error("no button " + text.toStdString());
}

/// Presses a key; whether anybody took it.
inline bool pressKey(QWidget& widget, int key, const QString& text = {},
                     Qt::KeyboardModifiers modifiers = Qt::NoModifier) {
    QKeyEvent event(QEvent::KeyPress, key, modifiers, text);
    QApplication::sendEvent(&widget, &event);
    return event.isAccepted();
}

} // namespace tavik::test
