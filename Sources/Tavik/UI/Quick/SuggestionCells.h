#pragma once

#include "UI/Widgets/Theme.h"

#include <QStyledItemDelegate>

namespace tavik {

/// Paints suggestions: the word and, quieter, what it means.
class SuggestionCells final : public QStyledItemDelegate {
public:
    static constexpr int rowHeight = 36;

    /// The theme must outlive the cells.
    explicit SuggestionCells(const Theme& theme) : colors(&theme) {}

    void setTheme(const Theme& theme) { colors = &theme; }

    QSize sizeHint(const QStyleOptionViewItem& option, const QModelIndex& index) const override;
    void paint(QPainter* painter, const QStyleOptionViewItem& option,
               const QModelIndex& index) const override;

private:
    const Theme* colors;
};

} // namespace tavik
