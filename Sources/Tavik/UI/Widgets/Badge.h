#pragma once

#include "UI/Widgets/Theme.h"

#include <QLabel>

namespace tavik {

/// A small label on a ground of its own colour.
class Badge final : public QLabel {
public:
    using Color = Tint Theme::*;

    /// The theme must outlive the badge.
    Badge(Color color, const Theme& theme);

    void setTheme(const Theme& theme);

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    Color color;
    const Theme* colors;
};

} // namespace tavik
