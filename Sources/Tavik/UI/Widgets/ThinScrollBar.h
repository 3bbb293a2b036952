#pragma once

#include <QScrollBar>

class QAbstractScrollArea;

namespace tavik {

/// A scroll bar that shows its handle only, in the colours of the palette.
class ThinScrollBar final : public QScrollBar {
public:
    ThinScrollBar();

    QSize sizeHint() const override;

protected:
    void paintEvent(QPaintEvent* event) override;
    void enterEvent(QEnterEvent* event) override;
    void leaveEvent(QEvent* event) override;
};

/// Has the area scroll upwards and downwards only, by a thin bar that appears where it is needed.
void scrollVertically(QAbstractScrollArea& area);

/// Scrolls by a key such as the arrow down; whether it is one.
bool scrollByKey(QAbstractScrollArea& area, int key);

} // namespace tavik
