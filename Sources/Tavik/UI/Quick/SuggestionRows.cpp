#include "UI/Quick/SuggestionRows.h"

#include <QString>
#include <utility>

namespace tavik {

void SuggestionRows::show(std::vector<Suggestion> suggestions) {
    beginResetModel();
    this->suggestions = std::move(suggestions);
    endResetModel();
}

QString SuggestionRows::wordAt(int row) const {
    return QString::fromStdString(suggestions.at(static_cast<std::size_t>(row)).word);
}

int SuggestionRows::rowCount(const QModelIndex& parent) const {
    return parent.isValid() ? 0 : static_cast<int>(suggestions.size());
}

QVariant SuggestionRows::data(const QModelIndex& index, int role) const {
    if (!index.isValid()) return {};
    const Suggestion& suggestion = suggestions.at(static_cast<std::size_t>(index.row()));
    const QString gloss = QString::fromStdString(suggestion.gloss);
    switch (role) {
    case Qt::DisplayRole:
        return wordAt(index.row());
    case glossRole:
        return gloss;
    case Qt::AccessibleTextRole:
        return wordAt(index.row()) + QStringLiteral("，") + gloss;
    default:
        return {};
    }
}

} // namespace tavik
