#include "TavikCLI/VocabularyReport.h"

#include "Learning/DueLabel.h"
#include "Text/Unicode.h"
#include "Vocabulary/ShownEncounter.h"

#include <algorithm>

namespace tavik {
namespace {

constexpr std::size_t gap = 2;
constexpr std::size_t maxHeadwordColumns = 28;
constexpr std::size_t minBriefColumns = 10;

std::string times(std::int64_t count) {
    return std::to_string(count) + " 次";
}

/// The widest of the cells, in terminal columns.
std::size_t columnsOf(const std::vector<std::string>& cells) {
    std::size_t columns = 0;
    for (const std::string& cell : cells)
        columns = std::max(columns, displayWidth(cell));
    return columns;
}

void addCard(Report& report, const VocabItem& item, const ReportSetting& setting) {
    const Card& card = item.card;
    report.paragraph("遇到 " + times(item.encounterCount) + " · 下次："
                         + dueLabel(card.due, setting.now, setting.calendar) + " · "
                         + std::string(label(card.state)) + "，复习 " + times(card.reps) + "，忘记 "
                         + times(card.lapses),
                     2);
    std::string dates = "保存于 " + setting.calendar.text(item.word.createdAt);
    if (card.lastReview) dates += " · 上次复习 " + setting.calendar.text(*card.lastReview);
    report.paragraph(dates, 2, TextStyle::faint);
}

} // namespace

std::string wordTitle(const Report& report, const Word& word) {
    std::string title = report.inStyle(TextStyle::bold, word.headword);
    if (!word.phonetic.empty())
        title += "  " + report.inStyle(TextStyle::faint, '/' + word.phonetic + '/');
    return title;
}

void addItems(Report& report, const std::vector<VocabItem>& items, const ReportSetting& setting) {
    std::vector<std::string> headwords;
    std::vector<std::string> dueLabels;
    std::vector<std::string> counts;
    for (const VocabItem& item : items) {
        headwords.push_back(report.clipped(item.word.headword, maxHeadwordColumns));
        dueLabels.push_back(dueLabel(item.card.due, setting.now, setting.calendar));
        counts.push_back(times(item.encounterCount));
    }
    const std::size_t headwordColumns = columnsOf(headwords);
    const std::size_t dueColumns = columnsOf(dueLabels);
    const std::size_t countColumns = columnsOf(counts);
    const std::size_t taken = headwordColumns + dueColumns + countColumns + 3 * gap;
    const std::size_t room = std::max(setting.terminal.columns, taken + minBriefColumns) - taken;
    for (std::size_t i = 0; i < items.size(); ++i)
        report.line(report.inStyle(TextStyle::bold, padded(headwords[i], headwordColumns + gap))
                    + report.inStyle(TextStyle::accent, padded(dueLabels[i], dueColumns + gap))
                    + report.inStyle(TextStyle::faint, padded(counts[i], countColumns + gap))
                    + report.clipped(items[i].word.brief, room));
}

void addEncounter(Report& report, const Encounter& encounter, const Word& word,
                  std::size_t indent) {
    const std::string sentence = encounter.sentence.value_or("");
    if (sentence.empty()) return;
    const auto found = highlighted(encounter, word);
    if (found)
        report.marked(found->before, found->match, found->after, indent);
    else
        report.paragraph(sentence, indent);
    if (encounter.contextMeaning)
        report.paragraph(*encounter.contextMeaning, indent + gap, TextStyle::faint);
    if (const std::string source = encounter.source.label(); !source.empty())
        report.paragraph(source, indent + gap, TextStyle::faint);
}

void addWord(Report& report, const VocabItem& item, const std::vector<Encounter>& encounters,
             const ReportSetting& setting) {
    report.line(wordTitle(report, item.word));
    if (!item.word.brief.empty()) report.paragraph(item.word.brief, 2);
    addCard(report, item, setting);
    const bool hasSentence = std::ranges::any_of(encounters, [](const Encounter& encounter) {
        return encounter.sentence && !encounter.sentence->empty();
    });
    if (hasSentence) report.heading("遇到它的原句");
    for (const Encounter& encounter : encounters)
        addEncounter(report, encounter, item.word, 2);
}

} // namespace tavik
