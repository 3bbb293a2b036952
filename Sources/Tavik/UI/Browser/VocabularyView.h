#pragma once

#include "UI/Browser/TableExport.h"
#include "UI/Browser/VocabularyModel.h"
#include "UI/Browser/VocabularyTable.h"
#include "UI/Browser/WordCells.h"
#include "UI/Browser/WordDetail.h"
#include "UI/Review/WordActions.h"
#include "UI/Widgets/Badge.h"
#include "UI/Widgets/ThemeFollower.h"

#include <QKeyEvent>
#include <QLabel>
#include <QLineEdit>
#include <QMenu>
#include <QSplitter>
#include <QStackedWidget>
#include <QTableView>
#include <QTimer>
#include <QWidget>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace tavik {

/// The window of the vocabulary book: a search field, the words found, and one of them with all its
/// sentences. Del deletes the chosen word, Ctrl+C copies its row, Ctrl+F goes to the search field.
class VocabularyView final : public QWidget {
public:
    /// Takes a model that has read the book just now.
    VocabularyView(std::shared_ptr<VocabularyModel> model, WordActions actions);

    QSize sizeHint() const override;

    /// The menu of the chosen row, or of the table alone; it ends when it is closed.
    QMenu* makeMenu(bool isForRow);

protected:
    void showEvent(QShowEvent* event) override;
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    QLayout* makeHeader();
    QWidget* makeTable();
    QWidget* makeEmptyBook();
    void addShortcuts();
    void followBook();
    bool handleFieldKey(const QKeyEvent& key);
    bool handleTableKey(const QKeyEvent& key);
    void catchUp();
    void searchChanged();
    void currentRowChanged(const QModelIndex& current);
    void selectedRowChanged();
    void showMenu(QPoint place);
    void copyRow();
    void deleteRow();
    void exportRows(TableFormat format);
    void refresh();
    void refreshRows();
    void refreshHeader();
    void refreshEmptyStates();
    void applyTheme();

    std::shared_ptr<VocabularyModel> shown;
    VocabularyModel& model;
    WordActions actions;
    ThemeFollower themeFollower;
    const Theme* colors;
    const Theme* appliedTheme = nullptr;
    VocabularyTable rows;
    WordCells cells;
    QLineEdit* field = nullptr;
    Badge* total = nullptr;
    Badge* due = nullptr;
    Badge* matches = nullptr;
    QLabel* message = nullptr;
    QStackedWidget* pages;
    QStackedWidget* results = nullptr;
    QTableView* table = nullptr;
    WordDetail* detail;
    QLabel* emptyIcon = nullptr;
    QLabel* emptyHint = nullptr;
    TableExport tableExport;
    /// Runs when the keys that were typed meanwhile are in the field, too.
    QTimer searchTimer;
    /// Runs `refresh` in the next turn of the event loop, when all changes can be read.
    QTimer refreshTimer;
    /// Runs when the book has not changed for a moment.
    QTimer reloadTimer;
    /// Runs when a message has been there long enough.
    QTimer messageTimer;
    bool isJustRead = true;
    bool areRowsStale = true;
    bool isShowingRows = false;
    std::string shownSearch;
    /// The row of a word that was deleted.
    std::optional<int> deletedRow;
    std::vector<Subscription> subscriptions;
};

} // namespace tavik
