#include "UI/Quick/QuickView.h"

#include "UI/Widgets/Fonts.h"
#include "UI/Widgets/Labels.h"
#include "UI/Widgets/TextField.h"

#include <QAbstractButton>
#include <QGuiApplication>
#include <QHBoxLayout>
#include <QInputMethod>
#include <QKeyEvent>
#include <QShortcut>
#include <QVBoxLayout>
#include <utility>

namespace tavik {
namespace {

constexpr int viewWidth = 440;
constexpr int padding = 16;
constexpr int spacing = 8;
constexpr int mostSuggestions = 8;

} // namespace

QuickView::QuickView(AppEnvironment& env, QuickActions actions, const std::string& note,
                     const std::string& typed)
    : env(env), actions(std::move(actions)),
      themeFollower(*this, env.prefersDark(), [this] { applyTheme(); }),
      colors(&themeFollower.theme()), cells(*colors) {
    setAutoFillBackground(true);
    auto* const layout = new QVBoxLayout(this);
    layout->setContentsMargins(padding, padding, padding, padding);
    layout->setSpacing(spacing);
    layout->setSizeConstraint(QLayout::SetFixedSize);
    if (!note.empty()) {
        QLabel* const line = textLabel(QString::fromStdString(note), FontSizes::secondary,
                                       QPalette::PlaceholderText);
        line->setWordWrap(true);
        layout->addWidget(line);
    }
    layout->addLayout(makeFieldRow());
    layout->addWidget(makeList());
    layout->addWidget(textLabel(QStringLiteral("回车查词 · ↑↓ 选择 · Esc 关闭"),
                                FontSizes::secondary, QPalette::PlaceholderText));
    auto* const escape = new QShortcut(QKeySequence(Qt::Key_Escape), this);
    connect(escape, &QShortcut::activated, this, [this] { this->actions.onClose(); });
    applyTheme();
    field->setText(QString::fromStdString(typed));
    field->selectAll();
    field->setFocus();
    showSuggestions();
}

QLayout* QuickView::makeFieldRow() {
    field = textField(QStringLiteral("输入英文单词或短语"), QStringLiteral("清空"),
                      FontSizes::headword - 4);
    field->setInputMethodHints(Qt::ImhPreferLatin | Qt::ImhNoPredictiveText
                               | Qt::ImhNoAutoUppercase);
    field->installEventFilter(this);
    // What is typed is seen before the dictionary is asked.
    suggestionTimer.setSingleShot(true);
    connect(&suggestionTimer, &QTimer::timeout, this, [this] { showSuggestions(); });
    connect(field, &QLineEdit::textChanged, this, [this] { suggestionTimer.start(0); });
    button = new ActionButton(ActionButton::Style::primary, *colors);
    button->show("", QStringLiteral("查词"));
    connect(button, &QAbstractButton::clicked, this, [this] { lookUp(); });
    auto* const row = new QHBoxLayout;
    row->setSpacing(spacing);
    row->addWidget(field, 1);
    row->addWidget(button);
    return row;
}

QWidget* QuickView::makeList() {
    list = new QListView;
    list->setModel(&suggestions);
    list->setItemDelegate(&cells);
    list->setFrameShape(QFrame::NoFrame);
    list->setFocusPolicy(Qt::NoFocus);
    list->setEditTriggers(QAbstractItemView::NoEditTriggers);
    list->setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    list->setVerticalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    list->setMouseTracking(true);
    list->viewport()->setAttribute(Qt::WA_Hover);
    list->setAccessibleName(QStringLiteral("提示"));
    connect(list, &QListView::clicked, this, [this](const QModelIndex& index) { choose(index); });
    emptyText = textLabel({}, FontSizes::body, QPalette::PlaceholderText);
    emptyText->setAlignment(Qt::AlignCenter);
    emptyText->setWordWrap(true);
    pages = new QStackedWidget;
    pages->setFixedSize(viewWidth - 2 * padding, mostSuggestions * SuggestionCells::rowHeight);
    pages->addWidget(list);
    pages->addWidget(emptyText);
    return pages;
}

/// With what still stands in the input method.
std::string QuickView::typed() const {
    QGuiApplication::inputMethod()->commit();
    return field->text().toStdString();
}

void QuickView::showSuggestions() {
    suggestionTimer.stop();
    ownText = field->text();
    button->setEnabled(!ownText.trimmed().isEmpty());
    const OfflineDictionary* const dictionary = env.dictionary();
    suggestions.show(dictionary != nullptr
                         ? dictionary->suggestions(ownText.toStdString(), mostSuggestions)
                         : std::vector<Suggestion>());
    if (dictionary == nullptr)
        emptyText->setText(QStringLiteral("没有找到词典，请重新安装 Tavik。"));
    else if (ownText.trimmed().isEmpty())
        emptyText->setText(QStringLiteral("输入开头几个字母，这里会列出可能的单词。"));
    else
        emptyText->setText(QStringLiteral("词典里没有这样开头的词。"));
    pages->setCurrentIndex(suggestions.rowCount() > 0 ? 0 : 1);
}

bool QuickView::eventFilter(QObject* watched, QEvent* event) {
    const auto* const key = dynamic_cast<QKeyEvent*>(event);
    if (key == nullptr || key->type() != QEvent::KeyPress)
        return QWidget::eventFilter(watched, event);
    switch (key->key()) {
    case Qt::Key_Down:
        moveBy(1);
        return true;
    case Qt::Key_Up:
        moveBy(-1);
        return true;
    case Qt::Key_Return:
    case Qt::Key_Enter:
        if (!key->isAutoRepeat()) lookUp();
        return true;
    default:
        return false;
    }
}

/// Moves among the rows and, before the first of them, what the user has typed; the field shows
/// where that leads.
void QuickView::moveBy(int rows) {
    if (suggestionTimer.isActive()) showSuggestions();
    const int count = suggestions.rowCount();
    if (count == 0) return;
    const QModelIndex current = list->currentIndex();
    const int places = count + 1;
    const int place = (current.row() + 1 + rows + places) % places;
    const QSignalBlocker isNotTyping(field);
    list->setCurrentIndex(suggestions.index(place - 1, 0));
    field->setText(place > 0 ? suggestions.wordAt(place - 1) : ownText);
}

void QuickView::choose(const QModelIndex& index) {
    const QSignalBlocker isNotTyping(field);
    field->setText(suggestions.wordAt(index.row()));
    lookUp();
}

void QuickView::lookUp() {
    const std::string text = typed();
    if (field->text().trimmed().isEmpty()) return;
    actions.onLookup({.text = text, .source = {}, .method = CaptureMethod::manual});
}

void QuickView::applyTheme() {
    colors = &themeFollower.theme();
    setPalette(colors->palette());
    button->setTheme(*colors);
    setThemeOfField(*field, *colors);
    cells.setTheme(*colors);
    list->viewport()->update();
}

} // namespace tavik
