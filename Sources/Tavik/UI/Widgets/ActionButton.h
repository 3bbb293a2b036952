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
    };

    ActionButton(Style style, const Theme& theme);

    /// `name` of the drawing.
    void show(const char* drawing, const QString& text);
    using QAbstractButton::show;

    /// The theme must outlive the button.
    void setTheme(const Theme& theme);

    QSize sizeHint() const override;

protected:
    void paintEvent(QPaintEvent* event) override;
    void enterEvent(QEnterEvent* event) override;
    void leaveEvent(QEvent* event) override;

private:
    QColor ground() const;
    QColor foreground() const;

    Style style;
    const Theme* colors;
    std::string drawing;
};

} // namespace tavik
