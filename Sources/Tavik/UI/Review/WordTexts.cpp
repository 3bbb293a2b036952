#include "UI/Review/WordTexts.h"

#include "Dictionary/DefinitionText.h"
#include "Text/TextUtil.h"
#include "UI/Widgets/RichText.h"
#include "Vocabulary/ShownEncounter.h"

namespace tavik {
namespace {

QString markedOrPlain(const std::string& sentence, const std::optional<TextUtil::Highlight>& found,
                      const Theme& theme) {
    if (!found) return coloredHTML(sentence, theme.text);
    return markedHTML(found->before, found->match, found->after, theme);
}

} // namespace

QString definitionsHTML(const std::vector<std::string>& definitions, const Theme& theme) {
    QString html;
    for (const std::string& line : definitions) {
        if (line.empty()) continue;
        const DefinitionText parts = definitionText(line);
        QString label;
        if (parts.label.starts_with('['))
            label = coloredHTML(parts.label, theme.partOfSpeech) + u' ';
        else if (!parts.label.empty())
            label = QStringLiteral("<i>%1</i> ").arg(coloredHTML(parts.label, theme.partOfSpeech));
        html += QStringLiteral("<div>%1%2</div>").arg(label, coloredHTML(parts.sense, theme.text));
    }
    return html;
}

QString sentenceHTML(const Encounter& encounter, const Word& word, const Theme& theme) {
    const std::string sentence = encounter.sentence.value_or("");
    if (sentence.empty()) return {};
    return markedOrPlain(sentence, highlighted(encounter, word), theme);
}

QString exampleHTML(const ExampleSentence& example, const Word& word, const Theme& theme) {
    QString html = markedOrPlain(
        example.en, TextUtil::highlight(example.en, {word.headword, word.lemma}), theme);
    if (!example.zh.empty())
        html += QStringLiteral("<br>") + coloredHTML(example.zh, theme.secondaryText);
    return html;
}

QString phoneticText(const std::string& phonetic) {
    return phonetic.empty() ? QString() : u'/' + QString::fromStdString(phonetic) + u'/';
}

} // namespace tavik
