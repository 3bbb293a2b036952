#pragma once

#include "Base/Calendar.h"
#include "UI/Browser/VocabularyModel.h"

#include <QAbstractTableModel>
#include <QString>
#include <optional>

namespace tavik {

/// The words of a model as rows of a table.
class VocabularyTable final : public QAbstractTableModel {
public:
    enum Column { wordColumn, glossColumn, countColumn, dueColumn, columnCount_ };

    enum Role {
        /// The word's phonetic transcription between slashes.
        phoneticRole = Qt::UserRole
    };

    /// The model must outlive the table.
    explicit VocabularyTable(const VocabularyModel& model) : model(model) {}

    /// Shows the words as the model has them at this moment.
    void reload();

    std::optional<int> rowOf(std::int64_t wordID) const;
    std::optional<std::int64_t> wordIDAt(int row) const;

    /// The cells of a row with tabs between them.
    QString textOf(int row) const;

    int rowCount(const QModelIndex& parent = {}) const override;
    int columnCount(const QModelIndex& parent = {}) const override;
    QVariant data(const QModelIndex& index, int role) const override;
    QVariant headerData(int section, Qt::Orientation orientation, int role) const override;

private:
    const VocabItem* itemAt(int row) const;
    QString cellText(const VocabItem& item, int column) const;

    const VocabularyModel& model;
    int rows = 0;
    Calendar calendar = Calendar::current();
    Date now;
};

} // namespace tavik
