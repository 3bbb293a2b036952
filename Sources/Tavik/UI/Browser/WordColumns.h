#pragma once

#include <QHeaderView>

namespace tavik {

/// The titles above the table of words.
class WordColumns final : public QHeaderView {
public:
    WordColumns();

    QSize sizeHint() const override;

protected:
    void paintSection(QPainter* painter, const QRect& rect, int section) const override;
};

} // namespace tavik
