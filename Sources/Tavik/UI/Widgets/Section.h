#pragma once

#include "UI/Widgets/Theme.h"

#include <QWidget>

namespace tavik {

/// A part of a window that is set apart by its ground.
class Section : public QWidget {
public:
    explicit Section(const Theme& theme) : colors(&theme) {}

    /// The theme must outlive the section.
    void setTheme(const Theme& theme);

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    const Theme* colors;
};

} // namespace tavik
