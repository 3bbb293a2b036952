#include "UI/Browser/VocabularyView.h"

#include "HotKey/KeyNames.h"
#include "UI/Browser/WordColumns.h"
#include "UI/Widgets/Fonts.h"
#include "UI/Widgets/Icons.h"
#include "UI/Widgets/Labels.h"
#include "UI/Widgets/TextField.h"
#include "UI/Widgets/ThinScrollBar.h"

#include <QAction>
#include <QClipboard>
#include <QGuiApplication>
#include <QHBoxLayout>
#include <QKeyEvent>
#include <QMessageBox>
#include <QScrollBar>
#include <QShortcut>
#include <QVBoxLayout>
#include <algorithm>
#include <array>
#include <chrono>
#include <utility>

namespace tavik {
namespace {

constexpr QSize preferredSize(1180, 640);
constexpr int padding = 16;
constexpr int spacing = 8;
constexpr int wordColumnWidth = 240;
constexpr int countColumnWidth = 80;
constexpr int dueColumnWidth = 120;
constexpr int emptyIconSize = 56;
constexpr int fieldWidth = 320;
constexpr std::chrono::milliseconds bookPatience{300};
constexpr std::chrono::seconds messageTime{8};

QString number(std::int64_t value) {
    return QString::number(value);
}

QLabel* centered(QLabel* label) {
    label->setAlignment(Qt::AlignCenter);
    label->setWordWrap(true);
    return label;
}

} // namespace

VocabularyView::VocabularyView(std::shared_ptr<VocabularyModel> model, WordActions actions)
    : shown(std::move(model)), model(*shown), actions(std::move(actions)),
      themeFollower(*this, this->model.environment().prefersDark(), [this] { refresh(); }),
      colors(&themeFollower.theme()), rows(this->model), cells(*colors), pages(new QStackedWidget),
      detail(new WordDetail(
          this->model, this->actions, [this] { deleteRow(); }, *colors)),
      tableExport(this->model.environment().tasks(), *this) {
    setAutoFillBackground(true);
    auto* const splitter = new QSplitter;
    splitter->setChildrenCollapsible(false);
    splitter->setHandleWidth(1);
    splitter->addWidget(makeTable());
    splitter->addWidget(detail);
    splitter->setStretchFactor(0, 2);
    splitter->setStretchFactor(1, 1);
    splitter->setSizes({preferredSize.width() * 2 / 3, preferredSize.width() / 3});
    pages->addWidget(splitter);
    pages->addWidget(makeEmptyBook());
    auto* const layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(0);
    layout->addLayout(makeHeader());
    layout->addWidget(pages, 1);
    addShortcuts();
    followBook();
    refresh();
    field->setFocus();
    QTimer::singleShot(0, this, [this] { isJustRead = false; });
}

QSize VocabularyView::sizeHint() const {
    return preferredSize;
}

QLayout* VocabularyView::makeHeader() {
    total = new Badge(&Theme::blue, *colors);
    due = new Badge(&Theme::orange, *colors);
    matches = new Badge(&Theme::green, *colors);
    message = textLabel({}, FontSizes::secondary, QPalette::PlaceholderText);
    message->setSizePolicy(QSizePolicy::Ignored, QSizePolicy::Preferred);
    field = textField(QStringLiteral("搜索单词、释义或原句"), QStringLiteral("清空搜索"),
                      FontSizes::body);
    field->setMaximumWidth(fieldWidth);
    field->setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Fixed);
    field->installEventFilter(this);
    connect(field, &QLineEdit::textChanged, this, [this] { searchChanged(); });
    searchTimer.setSingleShot(true);
    connect(&searchTimer, &QTimer::timeout, this,
            [this] { model.setSearch(field->text().toStdString()); });
    auto* const header = new QHBoxLayout;
    header->setContentsMargins(padding, padding - 4, padding, padding - 4);
    header->setSpacing(spacing);
    header->addWidget(total);
    header->addWidget(due);
    header->addWidget(matches);
    header->addWidget(message, 1);
    header->addWidget(field, 2);
    return header;
}

QWidget* VocabularyView::makeTable() {
    table = new QTableView;
    table->setModel(&rows);
    table->setItemDelegate(&cells);
    table->setSelectionBehavior(QAbstractItemView::SelectRows);
    table->setSelectionMode(QAbstractItemView::SingleSelection);
    table->setEditTriggers(QAbstractItemView::NoEditTriggers);
    table->setTabKeyNavigation(false);
    table->setShowGrid(false);
    table->setWordWrap(false);
    table->setVerticalScrollMode(QAbstractItemView::ScrollPerPixel);
    scrollVertically(*table);
    table->setContextMenuPolicy(Qt::CustomContextMenu);
    table->setAccessibleName(QStringLiteral("生词本"));
    table->installEventFilter(this);
    table->verticalHeader()->hide();
    table->verticalHeader()->setSectionResizeMode(QHeaderView::Fixed);
    table->verticalHeader()->setDefaultSectionSize(WordCells::rowHeight);
    auto* const columns = new WordColumns;
    table->setHorizontalHeader(columns);
    columns->setSectionResizeMode(VocabularyTable::glossColumn, QHeaderView::Stretch);
    columns->resizeSection(VocabularyTable::wordColumn, wordColumnWidth);
    columns->resizeSection(VocabularyTable::countColumn, countColumnWidth);
    columns->resizeSection(VocabularyTable::dueColumn, dueColumnWidth);
    connect(table->selectionModel(), &QItemSelectionModel::selectionChanged, this,
            [this] { selectedRowChanged(); });
    connect(table->selectionModel(), &QItemSelectionModel::currentRowChanged, this,
            [this](const QModelIndex& current) { currentRowChanged(current); });
    connect(table, &QWidget::customContextMenuRequested, this,
            [this](QPoint place) { showMenu(place); });
    results = new QStackedWidget;
    results->addWidget(table);
    results->addWidget(centered(textLabel(QStringLiteral("没有找到匹配的单词"), FontSizes::body,
                                          QPalette::PlaceholderText)));
    return results;
}

QWidget* VocabularyView::makeEmptyBook() {
    emptyIcon = centered(new QLabel);
    emptyHint = centered(textLabel({}, FontSizes::body, QPalette::PlaceholderText));
    auto* const page = new QWidget;
    auto* const layout = new QVBoxLayout(page);
    layout->setSpacing(spacing);
    layout->addStretch(1);
    layout->addWidget(emptyIcon);
    layout->addWidget(centered(textLabel(QStringLiteral("生词本还是空的"), FontSizes::headword,
                                         QPalette::WindowText, QFont::DemiBold)));
    layout->addWidget(emptyHint);
    layout->addStretch(1);
    return page;
}

void VocabularyView::addShortcuts() {
    const auto add = [this](const QKeySequence& keys, const std::function<void()>& action) {
        auto* const shortcut = new QShortcut(keys, this);
        shortcut->setAutoRepeat(false);
        connect(shortcut, &QShortcut::activated, this, action);
    };
    add(QKeySequence::Find, [this] {
        field->setFocus(Qt::ShortcutFocusReason);
        field->selectAll();
    });
    add(QKeySequence(Qt::Key_Escape), [this] {
        if (field->text().isEmpty()) return actions.onClose();
        field->clear();
    });
}

/// A change of the book is seen by itself, but not at each rating of a review.
void VocabularyView::followBook() {
    refreshTimer.setSingleShot(true);
    connect(&refreshTimer, &QTimer::timeout, this, [this] { refresh(); });
    messageTimer.setSingleShot(true);
    connect(&messageTimer, &QTimer::timeout, message, &QLabel::clear);
    reloadTimer.setSingleShot(true);
    connect(&reloadTimer, &QTimer::timeout, this, [this] {
        if (isVisible() && !isMinimized()) model.reload();
    });
    subscriptions = model.observeChanges([this] { refreshTimer.start(0); });
    subscriptions.push_back(model.items().observe([this](const auto&) { areRowsStale = true; }));
    AppEnvironment& env = model.environment();
    for (const auto* const value : {&env.dueNow(), &env.totalWords()})
        subscriptions.push_back(
            value->observe([this](std::int64_t) { reloadTimer.start(bookPatience); }));
    subscriptions.push_back(
        env.settings().hotKey.observe([this](const HotKeyCombo&) { refreshTimer.start(0); }));
}

void VocabularyView::showEvent(QShowEvent* event) {
    QWidget::showEvent(event);
    // A window is mostly shown in the turn of the loop in which it and its model are made.
    if (!std::exchange(isJustRead, false)) model.reload();
}

bool VocabularyView::eventFilter(QObject* watched, QEvent* event) {
    const auto* const key = dynamic_cast<QKeyEvent*>(event);
    if (key == nullptr || key->type() != QEvent::KeyPress)
        return QWidget::eventFilter(watched, event);
    return watched == field ? handleFieldKey(*key) : handleTableKey(*key);
}

bool VocabularyView::handleFieldKey(const QKeyEvent& key) {
    constexpr std::array leading{Qt::Key_Down, Qt::Key_Return, Qt::Key_Enter};
    if (std::ranges::find(leading, key.key()) == leading.end()) return false;
    catchUp();
    if (rows.rowCount() == 0) return true;
    table->setFocus(Qt::TabFocusReason);
    if (!table->currentIndex().isValid()) table->selectRow(0);
    return true;
}

bool VocabularyView::handleTableKey(const QKeyEvent& key) {
    if (key.matches(QKeySequence::Copy)) {
        copyRow();
        return true;
    }
    // With Shift it cuts elsewhere.
    if (key.key() != Qt::Key_Delete || (key.modifiers() & ~Qt::KeypadModifier) != Qt::NoModifier)
        return false;
    catchUp();
    deleteRow();
    return true;
}

/// What is done to a row is done to the one that is seen: all that was typed is searched for.
void VocabularyView::catchUp() {
    if (searchTimer.isActive()) {
        searchTimer.stop();
        model.setSearch(field->text().toStdString());
    }
    if (areRowsStale) refresh();
}

/// Searching takes a moment: the character that was typed is seen before.
void VocabularyView::searchChanged() {
    field->repaint();
    searchTimer.start(0);
}

/// The keyboard that comes to the table takes a row with it, which is then the chosen one.
void VocabularyView::currentRowChanged(const QModelIndex& current) {
    if (isShowingRows || !current.isValid() || table->selectionModel()->hasSelection()) return;
    table->selectRow(current.row());
}

void VocabularyView::selectedRowChanged() {
    // Rows that are about to be replaced stand for other words by now.
    if (isShowingRows || areRowsStale) return;
    QItemSelectionModel& selection = *table->selectionModel();
    const QModelIndexList chosen = selection.selectedRows();
    if (chosen.isEmpty()) return model.select(std::nullopt);
    // A screen reader selects without moving the keyboard there.
    if (selection.currentIndex().row() != chosen.first().row())
        selection.setCurrentIndex(chosen.first(), QItemSelectionModel::NoUpdate);
    model.select(rows.wordIDAt(chosen.first().row()));
}

QMenu* VocabularyView::makeMenu(bool isForRow) {
    auto* const menu = new QMenu(this);
    menu->setAttribute(Qt::WA_DeleteOnClose);
    const auto add = [](QMenu& to, const QString& text, const std::function<void()>& action) {
        QAction* const added = to.addAction(text);
        connect(added, &QAction::triggered, added, action);
        return added;
    };
    const VocabItem* const item = isForRow ? model.selectedItem() : nullptr;
    if (item != nullptr) {
        const std::string word = item->word.headword;
        add(*menu, QStringLiteral("复制这一行"), [this] {
            copyRow();
        })->setShortcut(QKeySequence::Copy);
        add(*menu, QStringLiteral("朗读"),
            [this, word] { model.environment().speech().speak(word); });
        add(*menu, QStringLiteral("视频例句"), [this, word] { actions.onVideo(word); });
        menu->addSeparator();
    }
    QMenu* const formats = menu->addMenu(QStringLiteral("导出显示的单词"));
    formats->setEnabled(!tableExport.isWriting());
    add(*formats, QStringLiteral("CSV 表格…"), [this] { exportRows(TableFormat::csv); });
    add(*formats, QStringLiteral("TSV 文本…"), [this] { exportRows(TableFormat::tsv); });
    if (item != nullptr) {
        menu->addSeparator();
        add(*menu, QStringLiteral("从生词本删除"), [this, id = item->word.id] {
            model.delete_(id);
        })->setShortcut(QKeySequence::Delete);
    }
    return menu;
}

void VocabularyView::showMenu(QPoint place) {
    catchUp();
    makeMenu(table->indexAt(place).isValid())->popup(table->viewport()->mapToGlobal(place));
}

void VocabularyView::copyRow() {
    const auto chosen = model.selection().value();
    const auto row = chosen ? rows.rowOf(*chosen) : std::nullopt;
    if (row) QGuiApplication::clipboard()->setText(rows.textOf(*row));
}

void VocabularyView::deleteRow() {
    const VocabItem* const item = model.selectedItem();
    if (item == nullptr) return;
    deletedRow = rows.rowOf(item->word.id);
    model.delete_(item->word.id);
}

void VocabularyView::exportRows(TableFormat format) {
    tableExport.ask(model.items().value(), format, [this](const QString& text, bool isWritten) {
        if (isWritten) {
            message->setText(text);
            messageTimer.start(messageTime);
            return;
        }
        auto* const box = new QMessageBox(QMessageBox::Warning, QStringLiteral("Tavik"), text,
                                          QMessageBox::NoButton, this);
        box->setTextFormat(Qt::PlainText);
        box->addButton(QStringLiteral("关闭"), QMessageBox::RejectRole);
        box->setAttribute(Qt::WA_DeleteOnClose);
        box->open();
    });
}

void VocabularyView::refresh() {
    applyTheme();
    refreshRows();
    refreshHeader();
    refreshEmptyStates();
    detail->refresh();
}

/// The words that were in view stay there, unless the search has changed.
void VocabularyView::refreshRows() {
    if (!std::exchange(areRowsStale, false)) return;
    isShowingRows = true;
    const bool isSameSearch =
        std::exchange(shownSearch, model.search().value()) == model.search().value();
    const int place = isSameSearch ? table->verticalScrollBar()->value() : 0;
    rows.reload();
    const auto chosen = model.selection().value();
    if (const auto row = chosen ? rows.rowOf(*chosen) : std::nullopt) table->selectRow(*row);
    // The arrow keys go on from where the word was.
    if (const auto gone = std::exchange(deletedRow, std::nullopt))
        table->selectionModel()->setCurrentIndex(rows.index(*gone - 1, 0),
                                                 QItemSelectionModel::NoUpdate);
    table->verticalScrollBar()->setValue(place);
    isShowingRows = false;
}

void VocabularyView::refreshHeader() {
    AppEnvironment& env = model.environment();
    total->setText(number(env.totalWords().value()) + QStringLiteral(" 个单词"));
    due->setText(number(env.dueNow().value()) + QStringLiteral(" 个待复习"));
    due->setVisible(env.dueNow().value() > 0);
    matches->setText(QStringLiteral("找到 %1 个").arg(model.items().value().size()));
    matches->setVisible(!QString::fromStdString(model.search().value()).trimmed().isEmpty());
}

void VocabularyView::refreshEmptyStates() {
    const bool isEmpty = model.items().value().empty();
    const bool isSearching = !model.search().value().empty();
    const bool isBookEmpty = isEmpty && !isSearching && model.environment().isBookReadable();
    pages->setCurrentIndex(isBookEmpty ? 1 : 0);
    results->setCurrentIndex(isEmpty && isSearching ? 1 : 0);
    emptyIcon->setPixmap(tintedPixmap("text.book.closed", emptyIconSize, colors->secondaryText,
                                      devicePixelRatioF()));
    const HotKeyCombo& hotKey = model.environment().settings().hotKey.value();
    emptyHint->setText(QStringLiteral("在任意 App 里选中单词，按")
                       + QString::fromStdString(display(hotKey) + "（" + localName(hotKey) + "）"));
}

void VocabularyView::applyTheme() {
    colors = &themeFollower.theme();
    if (std::exchange(appliedTheme, colors) == colors) return;
    setPalette(colors->palette());
    cells.setTheme(*colors);
    detail->setTheme(*colors);
    for (Badge* const badge : {total, due, matches})
        badge->setTheme(*colors);
    setThemeOfField(*field, *colors);
}

} // namespace tavik
