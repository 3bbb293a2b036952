#include "UI/Browser/VocabularyTable.h"

#include "Learning/DueLabel.h"
#include "UI/Review/WordTexts.h"

#include <QStringList>
#include <algorithm>
#include <array>

namespace tavik {

void VocabularyTable::reload() {
    beginResetModel();
    rows = static_cast<int>(model.items().value().size());
    calendar = Calendar::current();
    now = model.environment().now();
    endResetModel();
}

const VocabItem* VocabularyTable::itemAt(int row) const {
    // The words may have changed since the rows were counted.
    const auto& items = model.items().value();
    const auto at = static_cast<std::size_t>(row);
    return row >= 0 && at < items.size() ? &items[at] : nullptr;
}

std::optional<int> VocabularyTable::rowOf(std::int64_t wordID) const {
    const auto& items = model.items().value();
    const auto at =
        std::ranges::find(items, wordID, [](const VocabItem& item) { return item.word.id; });
    if (at == items.end()) return std::nullopt;
    return static_cast<int>(at - items.begin());
}

std::optional<std::int64_t> VocabularyTable::wordIDAt(int row) const {
    const VocabItem* const item = itemAt(row);
    if (item == nullptr) return std::nullopt;
    return item->word.id;
}

QString VocabularyTable::textOf(int row) const {
    const VocabItem* const item = itemAt(row);
    if (item == nullptr) return {};
    QStringList cells{cellText(*item, wordColumn), phoneticText(item->word.phonetic)};
    for (const int column : {glossColumn, countColumn, dueColumn})
        cells.append(cellText(*item, column));
    for (QString& cell : cells)
        cell = cell.simplified();
    return cells.join(u'\t');
}

int VocabularyTable::rowCount(const QModelIndex& parent) const {
    return parent.isValid() ? 0 : rows;
}

int VocabularyTable::columnCount(const QModelIndex& parent) const {
    return parent.isValid() ? 0 : columnCount_;
}

QString VocabularyTable::cellText(const VocabItem& item, int column) const {
    switch (column) {
    case wordColumn:
        return QString::fromStdString(item.word.headword);
    case glossColumn:
        return QString::fromStdString(item.word.brief);
    case countColumn:
        return QString::number(item.encounterCount) + QStringLiteral(" 次");
    default:
        return QString::fromStdString(dueLabel(item.card.due, now, calendar));
    }
}

QVariant VocabularyTable::data(const QModelIndex& index, int role) const {
    const VocabItem* const item = itemAt(index.row());
    if (item == nullptr) return {};
    switch (role) {
    case Qt::DisplayRole:
        return cellText(*item, index.column());
    case Qt::ToolTipRole:
        // A tool tip may be taken for markup.
        if (index.column() > glossColumn) return {};
        return QStringLiteral("<qt>%1</qt>").arg(cellText(*item, index.column()).toHtmlEscaped());
    case Qt::TextAlignmentRole:
        return (Qt::AlignVCenter | Qt::AlignLeft).toInt();
    case phoneticRole:
        return phoneticText(item->word.phonetic);
    default:
        return {};
    }
}

QVariant VocabularyTable::headerData(int section, Qt::Orientation orientation, int role) const {
    if (orientation != Qt::Horizontal || section >= columnCount_) return {};
    if (role == Qt::TextAlignmentRole) return (Qt::AlignVCenter | Qt::AlignLeft).toInt();
    if (role != Qt::DisplayRole) return {};
    static const std::array<QString, columnCount_> titles{
        QStringLiteral("单词"), QStringLiteral("释义"), QStringLiteral("遇到"),
        QStringLiteral("下次复习")};
    return titles[static_cast<std::size_t>(section)];
}

} // namespace tavik
