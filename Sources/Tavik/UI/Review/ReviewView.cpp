#include "UI/Review/ReviewView.h"

#include "UI/Review/WordTexts.h"
#include "UI/Widgets/Icons.h"
#include "UI/Widgets/Labels.h"
#include "UI/Widgets/RichText.h"
#include "UI/Widgets/ThinScrollBar.h"

#include <QApplication>
#include <QHBoxLayout>
#include <QKeyEvent>
#include <QPainter>
#include <QScreen>
#include <QScrollBar>
#include <QShortcut>
#include <QVBoxLayout>
#include <algorithm>
#include <utility>

namespace tavik {
namespace {

constexpr QSize viewSize(640, 600);
constexpr int padding = 24;
constexpr int spacing = 12;
constexpr int wordSize = 28;
constexpr int sealSize = 72;

QWidget* column(QVBoxLayout*& layout, int gap) {
    auto* const widget = new QWidget;
    layout = new QVBoxLayout(widget);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(gap);
    return widget;
}

QString number(std::int64_t value) {
    return QString::number(value);
}

} // namespace

ReviewView::ReviewView(std::shared_ptr<ReviewModel> model, WordActions actions)
    : shown(std::move(model)), model(*shown), actions(std::move(actions)),
      themeFollower(*this, this->model.environment().prefersDark(), [this] { refresh(); }),
      colors(&themeFollower.theme()), pages(new QStackedWidget), choices(new QStackedWidget) {
    setFocusPolicy(Qt::StrongFocus);
    setAutoFillBackground(true);
    const QSize room = screen()->availableGeometry().size() * 9 / 10;
    setFixedSize(viewSize.boundedTo(room));
    QVBoxLayout* session = nullptr;
    QWidget* const sessionPage = column(session, spacing);
    session->addWidget(makeProgress());
    session->addWidget(makeCard(), 1);
    choices->addWidget(makeQuestionButtons());
    choices->addWidget(makeRatings());
    choices->setSizePolicy(QSizePolicy::Preferred, QSizePolicy::Fixed);
    session->addWidget(choices);
    pages->addWidget(sessionPage);
    pages->addWidget(makeSummary());
    auto* const layout = new QVBoxLayout(this);
    layout->setContentsMargins(padding, padding, padding, padding);
    layout->addWidget(pages);
    auto* const escape = new QShortcut(QKeySequence(Qt::Key_Escape), this);
    escape->setAutoRepeat(false);
    connect(escape, &QShortcut::activated, this, this->actions.onClose);
    refreshTimer.setSingleShot(true);
    connect(&refreshTimer, &QTimer::timeout, this, [this] { refresh(); });
    const auto change = [this] { refreshTimer.start(0); };
    subscriptions = this->model.observeChanges(change);
    AppEnvironment& env = this->model.environment();
    subscriptions.push_back(
        env.settings().schedulerKind.observe([change](SchedulerKind) { change(); }));
    subscriptions.push_back(
        env.settings().desiredRetention.observe([change](double) { change(); }));
    refresh();
}

QWidget* ReviewView::makeProgress() {
    QVBoxLayout* layout = nullptr;
    QWidget* const progress = column(layout, spacing / 2);
    count = textLabel({}, FontSizes::body, QPalette::WindowText, QFont::DemiBold);
    done = textLabel({}, FontSizes::secondary, QPalette::PlaceholderText);
    auto* const line = new QHBoxLayout;
    line->addWidget(count);
    line->addStretch(1);
    line->addWidget(done);
    bar = new ProgressLine;
    bar->setAccessibleName(QStringLiteral("本次进度"));
    layout->addLayout(line);
    layout->addWidget(bar);
    return progress;
}

QWidget* ReviewView::makeCard() {
    QVBoxLayout* layout = nullptr;
    QWidget* const card = column(layout, spacing);
    layout->setContentsMargins(0, spacing, 0, spacing);
    headline = new WordHeadline(
        wordSize, [this](const Word& word) { model.environment().speech().speak(word.headword); },
        [this](const Word& word) { actions.onVideo(word.headword); }, *colors);
    layout->addWidget(headline);
    encounter = new EncounterView(actions.openPage, *colors);
    layout->addWidget(encounter);
    QVBoxLayout* inside = nullptr;
    answer = column(inside, spacing);
    meaning = new Paragraph;
    definitions = new Paragraph;
    examples = new Paragraph;
    definitions->setAccessibleName(QStringLiteral("释义"));
    examples->setAccessibleName(QStringLiteral("例句"));
    for (Paragraph* const part : {meaning, definitions, examples})
        inside->addWidget(part);
    layout->addWidget(answer);
    layout->addStretch(1);
    scroll = new QScrollArea;
    scroll->setWidget(card);
    scroll->setWidgetResizable(true);
    scrollVertically(*scroll);
    scroll->setFocusPolicy(Qt::NoFocus);
    return scroll;
}

QWidget* ReviewView::makeQuestionButtons() {
    QVBoxLayout* layout = nullptr;
    QWidget* const question = column(layout, spacing);
    QLabel* const hint = textLabel(QStringLiteral("先回想它的意思，再看答案"), FontSizes::secondary,
                                   QPalette::PlaceholderText);
    auto* const reveal = new ActionButton(ActionButton::Style::primary, *colors);
    reveal->show("", QStringLiteral("显示答案（空格）"));
    connect(reveal, &QAbstractButton::clicked, this, [this] { model.reveal(); });
    layout->addStretch(1);
    layout->addWidget(hint, 0, Qt::AlignHCenter);
    layout->addWidget(reveal, 0, Qt::AlignHCenter);
    return question;
}

QWidget* ReviewView::makeRatings() {
    auto* const row = new QWidget;
    auto* const layout = new QHBoxLayout(row);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(spacing);
    for (const Rating rating : allRatings) {
        auto* const button = new RatingButton(rating, *colors);
        // The next word may be there already, not seen yet.
        connect(button, &QAbstractButton::clicked, this, [this, rating] {
            if (model.revealed().value()) model.rate(rating);
        });
        layout->addWidget(button, 0, Qt::AlignBottom);
        ratings[rating] = button;
    }
    return row;
}

QWidget* ReviewView::makeSummary() {
    QVBoxLayout* layout = nullptr;
    QWidget* const summary = column(layout, spacing);
    seal = new QLabel;
    summaryTitle = textLabel({}, FontSizes::headword, QPalette::WindowText, QFont::DemiBold);
    summaryLine = textLabel({}, FontSizes::body, QPalette::PlaceholderText);
    auto* const close = new ActionButton(ActionButton::Style::bordered, *colors);
    close->show("", QStringLiteral("关闭"));
    connect(close, &QAbstractButton::clicked, this, actions.onClose);
    layout->addStretch(1);
    for (QWidget* const part : {static_cast<QWidget*>(seal), static_cast<QWidget*>(summaryTitle),
                                static_cast<QWidget*>(summaryLine)})
        layout->addWidget(part, 0, Qt::AlignHCenter);
    layout->addSpacing(spacing);
    layout->addWidget(close, 0, Qt::AlignHCenter);
    layout->addStretch(1);
    return summary;
}

void ReviewView::showEvent(QShowEvent* event) {
    QWidget::showEvent(event);
    QApplication::instance()->installEventFilter(this);
}

void ReviewView::hideEvent(QHideEvent* event) {
    QApplication::instance()->removeEventFilter(this);
    QWidget::hideEvent(event);
}

bool ReviewView::eventFilter(QObject* watched, QEvent* event) {
    const auto* const key = dynamic_cast<QKeyEvent*>(event);
    const auto* const widget = qobject_cast<QWidget*>(watched);
    if (key == nullptr || key->type() != QEvent::KeyPress || widget == nullptr
        || widget->window() != window() || model.current() == nullptr)
        return false;
    return handleKey(key->key());
}

bool ReviewView::handleKey(int key) {
    if (key == Qt::Key_Space) {
        if (!model.revealed().value()) model.reveal();
        return true;
    }
    if (!model.revealed().value()) return false;
    const auto rating = ratingFromRawValue(key - Qt::Key_0);
    if (rating) model.rate(*rating);
    return rating.has_value();
}

void ReviewView::keyPressEvent(QKeyEvent* event) {
    if (!scrollByKey(*scroll, event->key())) QWidget::keyPressEvent(event);
}

void ReviewView::refresh() {
    applyTheme();
    refreshProgress();
    const VocabItem* const item = model.current();
    pages->setCurrentIndex(item == nullptr ? 1 : 0);
    if (item == nullptr) return refreshSummary();
    refreshWord(*item);
    refreshAnswer(item->word);
    const bool isRevealed = model.revealed().value();
    answer->setVisible(isRevealed);
    choices->setCurrentIndex(isRevealed ? 1 : 0);
    if (std::exchange(shownIndex, model.index().value()) != model.index().value()) {
        scroll->verticalScrollBar()->setValue(0);
        setFocus();
    }
}

void ReviewView::refreshProgress() {
    const std::int64_t size = model.initialCount();
    const std::int64_t given = model.reviewedThisSession().value();
    const std::int64_t reached = std::min(given, size);
    QString text = number(reached) + QStringLiteral(" / ") + number(size);
    if (model.current() != nullptr && model.isRepetition())
        text += QStringLiteral("  · 没记住的再来一遍");
    count->setText(text);
    bar->setMaximum(static_cast<int>(std::max<std::int64_t>(size, 1)));
    bar->setValue(static_cast<int>(reached));
    done->setText(QStringLiteral("本次已复习 ") + number(given));
}

void ReviewView::refreshWord(const VocabItem& item) {
    headline->show(item.word, *colors);
    encounter->show(model.encounter().value().value_or(Encounter()), item.word, false, {});
}

void ReviewView::refreshAnswer(const Word& word) {
    const auto& met = model.encounter().value();
    const std::string here = met ? met->contextMeaning.value_or("") : "";
    meaning->showHTML(coloredHTML("在这句话里：", colors->secondaryText)
                      + coloredHTML(here, colors->text));
    meaning->setVisible(!here.empty());
    QString html = definitionsHTML(model.definitions().value(), *colors);
    if (html.isEmpty()) html = coloredHTML("（没有释义）", colors->secondaryText);
    definitions->showHTML(html);
    html.clear();
    for (const ExampleSentence& example : model.examples().value())
        html += QStringLiteral("<p style=\"margin:0 0 8px 0\">%1</p>")
                    .arg(exampleHTML(example, word, *colors));
    examples->showHTML(html);
    examples->setVisible(!html.isEmpty());
    for (const auto& [rating, preview] : model.previews())
        ratings[rating]->showPreview(preview);
}

void ReviewView::refreshSummary() {
    const std::int64_t given = model.reviewedThisSession().value();
    seal->setPixmap(
        tintedPixmap("checkmark.seal.fill", sealSize, colors->green.text, devicePixelRatioF()));
    summaryTitle->setText(given >= 1 ? QStringLiteral("今天的复习完成了！")
                                     : QStringLiteral("现在没有需要复习的单词"));
    summaryLine->setText(QStringLiteral("本次复习了 ") + number(given)
                         + QStringLiteral(" 次。明天按时提醒你。"));
    summaryLine->setVisible(given >= 1);
}

void ReviewView::applyTheme() {
    colors = &themeFollower.theme();
    if (std::exchange(appliedTheme, colors) == colors) return;
    setPalette(colors->palette());
    encounter->setTheme(*colors);
    setThemeOfButtons(*this, *colors);
    for (const auto& [rating, button] : ratings)
        button->setTheme(*colors);
}

void ReviewView::paintEvent(QPaintEvent* /*event*/) {
    QPainter(this).fillRect(rect(), colors->surface);
}

} // namespace tavik
