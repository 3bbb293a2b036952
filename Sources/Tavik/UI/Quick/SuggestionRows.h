#pragma once

#include "Dictionary/DictionaryRecords.h"

#include <QAbstractListModel>
#include <vector>

namespace tavik {

/// The words suggested for what is typed, a row each. Their text is the word.
class SuggestionRows final : public QAbstractListModel {
public:
    static constexpr int glossRole = Qt::UserRole;

    void show(std::vector<Suggestion> suggestions);

    QString wordAt(int row) const;

    int rowCount(const QModelIndex& parent = {}) const override;
    QVariant data(const QModelIndex& index, int role) const override;

private:
    std::vector<Suggestion> suggestions;
};

} // namespace tavik
