#include "UI/Popup/PopupView.h"

#include "Dictionary/DefinitionText.h"
#include "Dictionary/DictionaryLabels.h"
#include "Text/TextUtil.h"
#include "UI/Widgets/Fonts.h"
#include "UI/Widgets/RichText.h"
#include "UI/Widgets/ThinScrollBar.h"

#include <QFontMetrics>
#include <QGridLayout>
#include <QHBoxLayout>
#include <algorithm>
#include <cmath>

namespace tavik {
namespace {

constexpr int padding = 16;
constexpr int spacing = 8;
constexpr int sectionPadding = 10;
constexpr int gapOfExamples = 8;
constexpr int leastBodyHeight = 48;
constexpr int longestTitle = 160;
constexpr int mostDefinitions = 12;
constexpr int mostEnglishDefinitions = 4;
constexpr std::size_t mostExamples = 3;
constexpr int labelColumn = 44;

QString text(const std::string& utf8) {
    return QString::fromStdString(utf8);
}

/// On one line, and no longer than a popup can bear.
QString titleText(const PopupModel& model) {
    const QString title = text(model.title()).simplified();
    return title.size() <= longestTitle ? title : title.left(longestTitle) + u'…';
}

QString marksText(const DictEntry& entry) {
    QStringList marks;
    if (entry.collins > 0) marks.append(QString(std::min(entry.collins, 5), u'★'));
    if (entry.oxford) marks.append(QStringLiteral("牛津核心"));
    for (const std::string& tag : entry.tags)
        marks.append(text(tagLabel(tag)));
    return marks.join(QStringLiteral(" · "));
}

/// The Chinese senses; the English definitions where there are none.
std::vector<std::string> sensesOf(const DictEntry& entry) {
    const bool isChinese = !entry.translations.empty();
    const auto& all = isChinese ? entry.translations : entry.definitions;
    const auto most =
        static_cast<std::size_t>(isChinese ? mostDefinitions : mostEnglishDefinitions);
    return {all.begin(), all.begin() + static_cast<std::ptrdiff_t>(std::min(all.size(), most))};
}

/// Also of one without any text that wraps.
int heightOf(const QLayout& layout, int width) {
    return layout.hasHeightForWidth() ? layout.totalHeightForWidth(width)
                                      : layout.totalSizeHint().height();
}

} // namespace

PopupView::PopupView(std::shared_ptr<const PopupModel> model, bool hasModel, PopupActions actions,
                     const Theme& theme)
    : shown(std::move(model)), model(*shown), hasModel(hasModel), actions(std::move(actions)),
      colors(&theme), layout(new QVBoxLayout(this)), scroll(new QScrollArea), body(new QWidget),
      bodyLayout(new QVBoxLayout(body)) {
    setFixedWidth(viewWidth);
    layout->setContentsMargins(padding, padding - 4, padding, padding);
    layout->setSpacing(spacing);
    addHeader();
    addMarks();
    addBody();
    addButtons();
    applyTheme();
    refresh();
}

QLabel* PopupView::label(const QString& text, int pixels, Color color, bool isBold) {
    auto* const label = new QLabel(text);
    label->setFont(uiFont(pixels, isBold ? QFont::DemiBold : QFont::Normal));
    // What comes from dictionaries, pages and models is text, never markup.
    label->setTextFormat(Qt::PlainText);
    labels.emplace_back(label, color);
    return label;
}

QLabel* PopupView::paragraph(const QString& text, Color color) {
    QLabel* const paragraph = label(text, FontSizes::body, color);
    paragraph->setWordWrap(true);
    paragraph->setTextInteractionFlags(Qt::TextSelectableByMouse);
    return paragraph;
}

ActionButton* PopupView::button(ActionButton::Style style, const std::function<void()>& action) {
    auto* const button = new ActionButton(style, *colors);
    connect(button, &QAbstractButton::clicked, this, action);
    buttons.push_back(button);
    return button;
}

void PopupView::addHeader() {
    const QString title = titleText(model);
    QLabel* word = label(title, FontSizes::headword, &Theme::text, true);
    const auto& entry = model.result().entry;
    const QString phonetic =
        entry && !entry->phonetic.empty() ? u'/' + text(entry->phonetic) + u'/' : QString();
    auto* const speak = button(ActionButton::Style::iconOnly, actions.speak);
    speak->show("speaker.wave.2.fill", QStringLiteral("朗读"));
    auto* const close = button(ActionButton::Style::iconOnly, actions.close);
    close->show("xmark", QStringLiteral("关闭"));

    auto* const row = new QHBoxLayout;
    row->setSpacing(spacing);
    QLabel* const sound = label(phonetic, FontSizes::body, &Theme::secondaryText);
    const int room = viewWidth - 2 * padding - 3 * spacing - speak->sizeHint().width()
                     - close->sizeHint().width();
    const int titleWidth = QFontMetrics(word->font()).horizontalAdvance(title);
    const int soundWidth = QFontMetrics(sound->font()).horizontalAdvance(phonetic);
    const bool isSoundBelow = titleWidth + spacing + soundWidth > room;
    if (titleWidth > room) {
        word->setFont(uiFont(FontSizes::body, QFont::DemiBold));
        word->setWordWrap(true);
    }
    row->addWidget(word, titleWidth > room ? 1 : 0);
    if (!isSoundBelow) row->addWidget(sound, 0, Qt::AlignVCenter);
    row->addWidget(speak, 0, Qt::AlignTop);
    if (titleWidth <= room) row->addStretch(1);
    row->addWidget(close, 0, Qt::AlignTop);
    layout->addLayout(row);
    if (!isSoundBelow) return;
    sound->setWordWrap(true);
    layout->addWidget(sound);
    sound->setVisible(!phonetic.isEmpty());
}

void PopupView::addMarks() {
    const auto& entry = model.result().entry;
    const QString marks = entry ? marksText(*entry) : QString();
    if (marks.isEmpty()) return;
    QLabel* const line = label(marks, FontSizes::secondary, &Theme::secondaryText);
    line->setWordWrap(true);
    layout->addWidget(line);
}

void PopupView::addBody() {
    bodyLayout->setContentsMargins(0, 0, 0, 0);
    bodyLayout->setSpacing(spacing + 4);
    addDefinitions();
    addContext();
    addExamples();
    scroll->setWidget(body);
    scroll->setWidgetResizable(true);
    scroll->setFrameShape(QFrame::NoFrame);
    scroll->setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    scroll->setFocusPolicy(Qt::NoFocus);
    layout->addWidget(scroll);
}

void PopupView::addDefinitions() {
    if (const std::string line = model.inflectionLine(); !line.empty())
        bodyLayout->addWidget(paragraph(text(line), &Theme::secondaryText));
    if (!model.result().entry) {
        if (hasModel && TextUtil::isLookupCandidate(model.result().selection))
            bodyLayout->addWidget(
                paragraph(QStringLiteral("词典里没有收录。"), &Theme::secondaryText));
        return;
    }
    auto* const grid = new QGridLayout;
    grid->setHorizontalSpacing(spacing);
    grid->setVerticalSpacing(4);
    grid->setColumnStretch(1, 1);
    grid->setColumnMinimumWidth(0, 0);
    int row = 0;
    for (const std::string& line : sensesOf(*model.result().entry)) {
        const DefinitionText parts = definitionText(line);
        QLabel* const sense = paragraph(text(parts.sense), &Theme::text);
        if (parts.label.empty()) {
            grid->addWidget(sense, row++, 0, 1, 2);
            continue;
        }
        QLabel* const part = label(text(parts.label), FontSizes::body, &Theme::partOfSpeech);
        QFont font = part->font();
        font.setItalic(!parts.label.starts_with('['));
        part->setFont(font);
        part->setMinimumWidth(std::min(labelColumn, part->sizeHint().width()));
        grid->addWidget(part, row, 0, Qt::AlignTop);
        grid->addWidget(sense, row++, 1);
    }
    bodyLayout->addLayout(grid);
}

void PopupView::addContext() {
    context = new Section(*colors);
    auto* const inside = new QVBoxLayout(context);
    inside->setContentsMargins(sectionPadding + 2, sectionPadding, sectionPadding + 2,
                               sectionPadding);
    inside->setSpacing(4);
    meaning = paragraph({}, &Theme::text);
    translation = paragraph({}, &Theme::secondaryText);
    inside->addWidget(meaning);
    inside->addWidget(translation);
    bodyLayout->addWidget(context);
}

void PopupView::addExamples() {
    examples = paragraph({}, &Theme::text);
    examples->setObjectName(QStringLiteral("examples"));
    examples->setTextFormat(Qt::RichText);
    bodyLayout->addWidget(examples);
}

void PopupView::addButtons() {
    saveError = label({}, FontSizes::secondary, &Theme::danger);
    saveError->setWordWrap(true);
    layout->addWidget(saveError);
    auto* const row = new QHBoxLayout;
    row->setContentsMargins(0, 4, 0, 0);
    row->setSpacing(spacing);
    save = button(ActionButton::Style::primary, actions.save);
    auto* const videos = button(ActionButton::Style::bordered, actions.showVideos);
    videos->show("play.rectangle", QStringLiteral("视频例句"));
    auto* const copy = button(ActionButton::Style::bordered, actions.copyTranslation);
    copy->show("doc.on.doc", QStringLiteral("复制译文"));
    for (ActionButton* const button : {save, videos, copy})
        row->addWidget(button);
    row->addStretch(1);
    layout->addLayout(row);
}

void PopupView::refresh() {
    refreshContext();
    refreshExamples();
    refreshButtons();
}

void PopupView::refreshContext() {
    QString first;
    QString second;
    const auto& state = model.explain().value();
    if (const ContextExplanation* const done = model.explanationDone()) {
        first = text(done->meaningInContext);
        second = text(done->translation);
    } else if (state && std::holds_alternative<PopupModel::Loading>(*state)) {
        first = QStringLiteral("正在分析它在这句话里的意思…");
    } else if (state) {
        first = text(std::get<PopupModel::Failed>(*state).message);
    } else if (!model.result().isWord && !hasModel) {
        first = QStringLiteral("这不是词典里的单词。在 设置 › 大模型 中配置后即可翻译整句。");
    }
    meaning->setText(first);
    meaning->setVisible(!first.isEmpty());
    translation->setText(second);
    translation->setVisible(!second.isEmpty());
    context->setVisible(!first.isEmpty() || !second.isEmpty());
}

QString PopupView::exampleText(const ExampleSentence& example) const {
    const auto found = TextUtil::highlight(example.en, model.result().forms());
    QString line = found ? markedHTML(found->before, found->match, found->after, *colors)
                         : text(example.en).toHtmlEscaped();
    if (!example.zh.empty())
        line += QStringLiteral("<br>") + coloredHTML(example.zh, colors->secondaryText);
    return line;
}

void PopupView::refreshExamples() {
    std::vector<ExampleSentence> all;
    if (const ContextExplanation* const done = model.explanationDone()) all = done->examples;
    all.insert(all.end(), model.result().examples.begin(), model.result().examples.end());
    all.resize(std::min(all.size(), mostExamples));
    QString html;
    for (const ExampleSentence& example : all)
        html += QStringLiteral("<p style=\"margin:%1px 0 0 0\">%2</p>")
                    .arg(html.isEmpty() ? 0 : gapOfExamples)
                    .arg(exampleText(example));
    examples->setText(html);
    examples->setVisible(!all.empty());
}

void PopupView::refreshButtons() {
    const bool isSaved = model.saved().value();
    save->show(isSaved ? "checkmark" : "plus",
               isSaved ? QStringLiteral("已在生词本") : QStringLiteral("加入生词本"));
    const auto& error = model.saveError().value();
    saveError->setText(text(error.value_or("")));
    saveError->setVisible(error.has_value());
}

void PopupView::setTheme(const Theme& theme) {
    colors = &theme;
    applyTheme();
    refreshExamples();
}

void PopupView::applyTheme() {
    setPalette(colors->palette());
    for (const auto& [label, color] : labels) {
        QPalette palette = colors->palette();
        palette.setColor(QPalette::WindowText, colors->*color);
        label->setPalette(palette);
    }
    context->setTheme(*colors);
    for (ActionButton* const button : buttons)
        button->setTheme(*colors);
}

bool PopupView::scrollBy(int key) {
    return scrollByKey(*scroll, key);
}

std::string PopupView::selectedText() const {
    for (const auto& [label, color] : labels)
        if (label->hasSelectedText()) return label->selectedText().toStdString();
    return {};
}

PopupSize PopupView::fit(double maxHeight) {
    const int width = viewWidth - 2 * padding;
    bodyLayout->invalidate();
    const int bodyHeight = heightOf(*bodyLayout, width);
    const auto heightWith = [this](int height) {
        scroll->setFixedHeight(height);
        layout->invalidate();
        return heightOf(*layout, viewWidth);
    };
    scroll->setVisible(bodyHeight > 0);
    int height = heightWith(std::max(bodyHeight, 1));
    const int tooMuch = height - static_cast<int>(std::floor(maxHeight));
    if (tooMuch > 0)
        height = heightWith(std::max(bodyHeight - tooMuch, std::min(bodyHeight, leastBodyHeight)));
    resize(viewWidth, height);
    layout->activate();
    return {viewWidth, static_cast<double>(height)};
}

} // namespace tavik
