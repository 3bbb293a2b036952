#include "UI/Browser/WordDetail.h"

#include "Base/Calendar.h"
#include "Learning/DueLabel.h"
#include "UI/Review/WordTexts.h"
#include "UI/Widgets/Labels.h"
#include "UI/Widgets/ThinScrollBar.h"

#include <QHBoxLayout>
#include <QPainter>
#include <QScrollBar>
#include <algorithm>
#include <utility>

namespace tavik {
namespace {

constexpr int padding = 20;
constexpr int spacing = 10;
constexpr int wordSize = 26;
constexpr int leastWidth = 320;

QString number(std::size_t value) {
    return QString::number(value);
}

} // namespace

WordDetail::WordDetail(VocabularyModel& model, WordActions actions,
                       std::function<void()> deleteWord, const Theme& theme)
    : model(model), actions(std::move(actions)), deleteWord(std::move(deleteWord)), colors(&theme) {
    setMinimumWidth(leastWidth);
    setContentsMargins(1, 0, 0, 0);
    QLabel* const nothing = textLabel(QStringLiteral("选择一个单词查看详情"), FontSizes::body,
                                      QPalette::PlaceholderText);
    nothing->setAlignment(Qt::AlignCenter);
    nothing->setWordWrap(true);
    addWidget(nothing);
    addWidget(makeWord());
}

QWidget* WordDetail::makeWord() {
    headline = new WordHeadline(
        wordSize, [this](const Word& word) { model.environment().speech().speak(word.headword); },
        [this](const Word& word) { actions.onVideo(word.headword); }, *colors);
    gloss = new Paragraph;
    gloss->setAccessibleName(QStringLiteral("释义"));
    line = textLabel({}, FontSizes::secondary, QPalette::PlaceholderText);
    heading = textLabel(QStringLiteral("遇到它的原句"), FontSizes::body, QPalette::WindowText,
                        QFont::DemiBold);
    more = new ActionButton(ActionButton::Style::bordered, *colors);
    connect(more, &QAbstractButton::clicked, this, [this] { showMore(); });
    auto* const body = new QWidget;
    auto* const inside = new QVBoxLayout(body);
    inside->setContentsMargins(padding, padding, padding, padding);
    inside->setSpacing(spacing);
    for (QWidget* const part : std::initializer_list<QWidget*>{headline, gloss, line, heading})
        inside->addWidget(part);
    list = new QVBoxLayout;
    list->setSpacing(spacing);
    inside->addLayout(list);
    inside->addWidget(more, 0, Qt::AlignHCenter);
    inside->addStretch(1);
    scroll = new QScrollArea;
    scroll->setWidget(body);
    scroll->setWidgetResizable(true);
    scrollVertically(*scroll);
    auto* const remove = new ActionButton(ActionButton::Style::destructive, *colors);
    remove->show("trash", QStringLiteral("从生词本删除"));
    connect(remove, &QAbstractButton::clicked, this, this->deleteWord);
    auto* const bottom = new QHBoxLayout;
    bottom->setContentsMargins(padding, spacing, padding, spacing);
    bottom->addStretch(1);
    bottom->addWidget(remove);
    auto* const page = new QWidget;
    auto* const layout = new QVBoxLayout(page);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(0);
    layout->addWidget(scroll, 1);
    layout->addLayout(bottom);
    return page;
}

void WordDetail::refresh() {
    const VocabItem* const item = model.selectedItem();
    setCurrentIndex(item == nullptr ? 0 : 1);
    if (item == nullptr) return;
    if (shown.item.word.id != item->word.id) {
        most = encountersAtOnce;
        scroll->verticalScrollBar()->setValue(0);
    }
    const Date now = model.environment().now();
    Shown wanted{*item, model.encounters().value(), most,
                 dueLabel(item->card.due, now, Calendar::current()), colors};
    // Texts take a while to be laid out, and what is selected in them would be lost.
    if (wanted == shown) return;
    shown = std::move(wanted);
    showWord();
}

void WordDetail::showWord() {
    const VocabItem& item = shown.item;
    headline->show(item.word, *colors);
    gloss->showHTML(definitionsHTML({item.word.brief}, *colors));
    gloss->setVisible(!item.word.brief.empty());
    line->setText(QString::number(item.encounterCount) + QStringLiteral(" 次 · 下次：")
                  + QString::fromStdString(shown.due));
    showEncounters(shown.encounters, item.word);
}

EncounterView* WordDetail::encounterAt(std::size_t place) {
    while (encounterViews.size() <= place) {
        auto* const view = new EncounterView(actions.openPage, *colors);
        list->addWidget(view);
        encounterViews.push_back(view);
    }
    return encounterViews[place];
}

void WordDetail::showEncounters(const std::vector<Encounter>& encounters, const Word& word) {
    const Calendar calendar = Calendar::current();
    const std::size_t count = std::min(encounters.size(), most);
    for (std::size_t i = 0; i < count; ++i)
        encounterAt(i)->show(encounters[i], word, true,
                             QString::fromStdString(calendar.text(encounters[i].seenAt)));
    for (std::size_t i = count; i < encounterViews.size(); ++i)
        encounterViews[i]->hide();
    heading->setVisible(count > 0);
    more->setVisible(count < encounters.size());
    more->show("", QStringLiteral("再显示 %1 句（还有 %2 句）")
                       .arg(number(std::min(encounters.size() - count, encountersAtOnce)),
                            number(encounters.size() - count)));
}

void WordDetail::showMore() {
    most += encountersAtOnce;
    refresh();
}

/// A line sets it apart from the words.
void WordDetail::paintEvent(QPaintEvent* event) {
    QStackedWidget::paintEvent(event);
    QPainter(this).fillRect(0, 0, 1, height(), colors->border);
}

void WordDetail::setTheme(const Theme& theme) {
    colors = &theme;
    for (EncounterView* const view : encounterViews)
        view->setTheme(theme);
    setThemeOfButtons(*this, theme);
}

} // namespace tavik
