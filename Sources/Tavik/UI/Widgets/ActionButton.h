#pragma once

#include "UI/Widgets/Theme.h"

#include <QAbstractButton>
#include <string>

namespace tavik {

/// A button with one of our drawings, and with a text or without.
class ActionButton final : public QAbstractButton {
public:
    enum class Style {
        /// The drawing alone; the text is its name for screen readers and its tool tip.
        iconOnly,
        bordered,
        /// What most users will press.
        primary,
        /// For what cannot be undone.
        destructive,
        /// A text alone that leads elsewhere; cut off where there is no room for it.
        link,
    };

    ActionButton(Style style, const Theme& theme);

    /// `drawing` is the name of one of our drawings; empty for none.
    void show(const char* drawing, const QString& text);
    using QAbstractButton::show;

    /// The theme must outlive the button.
    void setTheme(const Theme& theme);

    QSize sizeHint() const override;
    QSize minimumSizeHint() const override;

protected:
    void paintEvent(QPaintEvent* event) override;
    void enterEvent(QEnterEvent* event) override;
    void leaveEvent(QEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;

private:
    void paintFocus(QPainter& painter, const QRectF& whole) const;
    void paintLink(QPainter& painter) const;
    int drawingRoom() const;
    QColor ground() const;
    QColor foreground() const;

    Style style;
    const Theme* colors;
    std::string drawing;
};

/// Presses the button where the event is of the Return key; whether it is.
bool pressByReturn(QAbstractButton& button, const QKeyEvent& event);

/// For all of them that stand in `parent`, at any depth.
void setThemeOfButtons(const QWidget& parent, const Theme& theme);

} // namespace tavik
