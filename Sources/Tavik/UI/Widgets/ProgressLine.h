#pragma once

#include <QProgressBar>

namespace tavik {

/// How far something has got, as a thin line in the colours of the palette.
class ProgressLine final : public QProgressBar {
public:
    ProgressLine();

    QSize sizeHint() const override;

protected:
    void paintEvent(QPaintEvent* event) override;
};

} // namespace tavik
