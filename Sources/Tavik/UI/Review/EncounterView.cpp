#include "UI/Review/EncounterView.h"

#include "UI/Review/WordTexts.h"
#include "UI/Widgets/Labels.h"
#include "UI/Widgets/RichText.h"

#include <QHBoxLayout>
#include <QUrl>
#include <QVBoxLayout>
#include <utility>

namespace tavik {
namespace {

constexpr int padding = 12;
constexpr int spacing = 6;
constexpr int sentenceSize = 15;
/// It takes all the room when it is there.
constexpr int placeStretch = 100;

} // namespace

EncounterView::EncounterView(OpenPage openPage, const Theme& theme)
    : Section(theme), openPage(std::move(openPage)), colors(&theme),
      sentence(new Paragraph(sentenceSize)), meaning(new Paragraph(FontSizes::secondary)),
      line(new QWidget), link(new ActionButton(ActionButton::Style::link, theme)),
      place(new Paragraph(FontSizes::secondary)),
      when(textLabel({}, FontSizes::secondary, QPalette::PlaceholderText)) {
    auto* const inLine = new QHBoxLayout(line);
    inLine->setContentsMargins(0, 0, 0, 0);
    inLine->setSpacing(spacing);
    inLine->addWidget(link);
    inLine->addWidget(place, placeStretch);
    inLine->addStretch(1);
    inLine->addWidget(when);
    auto* const layout = new QVBoxLayout(this);
    layout->setContentsMargins(padding, padding, padding, padding);
    layout->setSpacing(spacing);
    layout->addWidget(sentence);
    layout->addWidget(meaning);
    layout->addWidget(line);
    connect(link, &QAbstractButton::clicked, this, [this] { this->openPage(url); });
}

void EncounterView::show(const Encounter& encounter, const Word& word, bool hasMeaning,
                         const QString& date) {
    const QString html = sentenceHTML(encounter, word, *colors);
    sentence->showHTML(html);
    sentence->setVisible(!html.isEmpty());
    const std::string told = hasMeaning ? encounter.contextMeaning.value_or("") : "";
    meaning->showHTML(coloredHTML(told, colors->secondaryText));
    meaning->setVisible(!told.empty());
    url = encounter.source.url.value_or("");
    const std::string label = encounter.source.label();
    const QString source = QString::fromStdString(label);
    const bool isLink = !source.isEmpty() && canOpen(url);
    link->show("", source);
    // A tool tip may be taken for markup.
    link->setToolTip(
        QStringLiteral("<qt>%1</qt>").arg(QString::fromStdString(url).toHtmlEscaped()));
    link->setVisible(isLink);
    place->showHTML(coloredHTML(label, colors->secondaryText));
    place->setVisible(!isLink && !source.isEmpty());
    when->setText(date);
    line->setVisible(!source.isEmpty() || !date.isEmpty());
    setVisible(!html.isEmpty() || !source.isEmpty());
}

void EncounterView::setTheme(const Theme& theme) {
    colors = &theme;
    Section::setTheme(theme);
    link->setTheme(theme);
}

bool canOpen(const std::string& url) {
    const QUrl parsed(QString::fromStdString(url), QUrl::StrictMode);
    const QString scheme = parsed.scheme();
    return parsed.isValid()
           && (scheme == u"http" || scheme == u"https"
               || (scheme == u"file" && parsed.isLocalFile()));
}

} // namespace tavik
