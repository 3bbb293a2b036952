#include "UI/Review/WordHeadline.h"

#include "UI/Review/WordTexts.h"
#include "UI/Widgets/Labels.h"
#include "UI/Widgets/RichText.h"

#include <QHBoxLayout>
#include <QVBoxLayout>
#include <utility>

namespace tavik {
namespace {

constexpr int headlineHeight = 100;
constexpr int gapOfLines = 2;
constexpr int gapOfButtons = 4;

} // namespace

WordHeadline::WordHeadline(int pixels, Action speak, Action showVideos, const Theme& theme)
    : word(new Paragraph(pixels, headlineHeight)),
      phonetic(textLabel({}, FontSizes::body, QPalette::PlaceholderText)) {
    word->setAccessibleName(QStringLiteral("单词"));
    phonetic->setTextInteractionFlags(Qt::TextSelectableByMouse);
    auto* const texts = new QVBoxLayout;
    texts->setSpacing(gapOfLines);
    texts->addWidget(word);
    texts->addWidget(phonetic);
    auto* const layout = new QHBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(gapOfButtons);
    layout->addLayout(texts, 1);
    layout->addWidget(
        button("speaker.wave.2.fill", QStringLiteral("朗读"), std::move(speak), theme), 0,
        Qt::AlignTop);
    layout->addWidget(
        button("play.rectangle", QStringLiteral("视频例句"), std::move(showVideos), theme), 0,
        Qt::AlignTop);
}

ActionButton* WordHeadline::button(const char* drawing, const QString& name, Action action,
                                   const Theme& theme) {
    auto* const button = new ActionButton(ActionButton::Style::iconOnly, theme);
    button->show(drawing, name);
    connect(button, &QAbstractButton::clicked, this,
            [this, action = std::move(action)] { action(shown); });
    return button;
}

void WordHeadline::show(const Word& word, const Theme& theme) {
    shown = word;
    this->word->showHTML(QStringLiteral("<b>%1</b>").arg(coloredHTML(word.headword, theme.text)));
    phonetic->setText(phoneticText(word.phonetic));
    phonetic->setVisible(!word.phonetic.empty());
}

} // namespace tavik
