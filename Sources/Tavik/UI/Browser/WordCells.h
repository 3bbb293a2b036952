#pragma once

#include "UI/Widgets/Theme.h"

#include <QStyledItemDelegate>

namespace tavik {

/// Paints the cells of the table of words.
class WordCells final : public QStyledItemDelegate {
public:
    static constexpr int rowHeight = 44;
    /// Left and right of the text.
    static constexpr int padding = 12;

    /// The theme must outlive the cells.
    explicit WordCells(const Theme& theme) : colors(&theme) {}

    void setTheme(const Theme& theme) { colors = &theme; }

    void paint(QPainter* painter, const QStyleOptionViewItem& option,
               const QModelIndex& index) const override;

private:
    void paintGround(QPainter& painter, const QStyleOptionViewItem& option) const;

    const Theme* colors;
};

} // namespace tavik
