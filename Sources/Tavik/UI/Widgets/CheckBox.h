#pragma once

#include "UI/Widgets/Theme.h"

#include <QCheckBox>

namespace tavik {

/// A check box in the colours of the theme, whose mark is seen on every ground.
class CheckBox final : public QCheckBox {
public:
    CheckBox(const QString& text, const Theme& theme);

    /// The theme must outlive the box.
    void setTheme(const Theme& theme);

    QSize sizeHint() const override;

    QSize minimumSizeHint() const override { return sizeHint(); }

protected:
    bool hitButton(const QPoint& place) const override { return rect().contains(place); }

    void paintEvent(QPaintEvent* event) override;

private:
    const Theme* colors;
};

} // namespace tavik
