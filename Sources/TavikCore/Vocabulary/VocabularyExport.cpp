#include "Vocabulary/VocabularyExport.h"

#include "Text/Unicode.h"
#include "Vocabulary/ShownEncounter.h"
#include "Vocabulary/VocabularyJSON.h"
#include "Vocabulary/VocabularyStore.h"

#include <nlohmann/json.hpp>

#include <algorithm>
#include <array>
#include <span>

namespace tavik {
namespace {

using Cells = std::vector<std::string>;

std::string orEmpty(const std::optional<std::string>& text) {
    return text.value_or("");
}

bool looksLikeFormula(std::string_view cell) {
    return !cell.empty()
           && std::string_view("=+-@\t\r").find(cell.front()) != std::string_view::npos;
}

/// By RFC 4180.
std::string csvCell(const std::string& text) {
    std::string cell = (looksLikeFormula(text) ? "'" : "") + text;
    if (cell.find_first_of(",\"\r\n") == std::string::npos) return cell;
    return '"' + replacingAll(cell, "\"", "\"\"") + '"';
}

void appendCSVLine(std::string& csv, const Cells& cells) {
    for (std::size_t i = 0; i < cells.size(); ++i)
        csv.append(i == 0 ? "" : ",").append(csvCell(cells[i]));
    csv += "\r\n";
}

/// Text without the tabs and line breaks for which the format has no quoting.
std::string tsvCell(std::string text) {
    std::ranges::replace_if(
        text, [](char each) { return each == '\t' || each == '\r' || each == '\n'; }, ' ');
    return (looksLikeFormula(text) ? "'" : "") + text;
}

void appendTSVLine(std::string& tsv, const Cells& cells) {
    for (std::size_t i = 0; i < cells.size(); ++i)
        tsv.append(i == 0 ? "" : "\t").append(tsvCell(cells[i]));
    tsv += '\n';
}

Cells wordCells(const Word& word, const Calendar& calendar) {
    return {word.headword, word.lemma, word.phonetic, word.brief, calendar.text(word.createdAt)};
}

Cells cardCells(const Card& card, const Calendar& calendar) {
    return {std::string(label(card.state)), calendar.text(card.due), std::to_string(card.reps),
            std::to_string(card.lapses),
            card.lastReview ? calendar.text(*card.lastReview) : std::string()};
}

Cells encounterCells(const Encounter& encounter, const Calendar& calendar) {
    return {encounter.selection,
            orEmpty(encounter.sentence),
            orEmpty(encounter.contextMeaning),
            orEmpty(encounter.source.appName),
            orEmpty(encounter.source.url),
            calendar.text(encounter.seenAt)};
}

/// By which spreadsheets know that a CSV file is UTF-8.
constexpr const char* byteOrderMark = "\xEF\xBB\xBF";

std::string csv(std::span<const WordHistory> words, const Calendar& calendar) {
    std::string csv = byteOrderMark;
    const Cells columns{"单词",     "原形",     "音标",     "释义",     "保存时间",   "状态",
                        "下次复习", "复习次数", "遗忘次数", "上次复习", "选中的文字", "句子",
                        "语境释义", "来源",     "网址",     "遇到时间"};
    appendCSVLine(csv, columns);
    for (const auto& [item, encounters] : words) {
        Cells known = wordCells(item.word, calendar);
        for (const std::string& cell : cardCells(item.card, calendar))
            known.push_back(cell);
        for (const Encounter& encounter : encounters) {
            Cells line = known;
            for (const std::string& cell : encounterCells(encounter, calendar))
                line.push_back(cell);
            appendCSVLine(csv, line);
        }
        if (encounters.empty()) {
            known.resize(columns.size());
            appendCSVLine(csv, known);
        }
    }
    return csv;
}

std::string json(std::span<const WordHistory> words) {
    auto array = nlohmann::json::array();
    for (const auto& [item, encounters] : words)
        array.push_back({{"word", item.word}, {"card", item.card}, {"encounters", encounters}});
    return array.dump(2, ' ', false, nlohmann::json::error_handler_t::replace) + '\n';
}

/// `text` for a field of HTML on one line.
std::string html(std::string_view text) {
    constexpr std::array<std::array<const char*, 2>, 7> escapes{{{"&", "&amp;"},
                                                                 {"<", "&lt;"},
                                                                 {">", "&gt;"},
                                                                 {"\"", "&quot;"},
                                                                 {"\t", " "},
                                                                 {"\r", ""},
                                                                 {"\n", "<br>"}}};
    std::string result(text);
    for (const auto& [from, to] : escapes)
        result = replacingAll(result, from, to);
    return result;
}

/// The sentence with the word bold, what it means there, and where it stood.
std::string ankiSentence(const Encounter& encounter, const Word& word) {
    const std::string sentence = orEmpty(encounter.sentence);
    std::string field = html(sentence);
    if (const auto highlight = highlighted(encounter, word))
        field = html(highlight->before) + "<b>" + html(highlight->match) + "</b>"
                + html(highlight->after);
    if (encounter.contextMeaning) field += "<br>" + html(*encounter.contextMeaning);
    const std::string source = encounter.source.label();
    if (!source.empty()) field += "<br><small>" + html(source) + "</small>";
    return field;
}

std::string anki(std::span<const WordHistory> words) {
    std::string text = "#separator:tab\n#html:true\n#columns:单词\t音标\t释义\t句子\n";
    for (const auto& [item, encounters] : words) {
        std::string sentences;
        for (const Encounter& encounter : encounters) {
            if (!encounter.sentence || encounter.sentence->empty()) continue;
            if (!sentences.empty()) sentences += "<br><br>";
            sentences += ankiSentence(encounter, item.word);
        }
        for (const std::string& field : {item.word.headword, item.word.phonetic, item.word.brief})
            text += html(field) + '\t';
        text += sentences + '\n';
    }
    return text;
}

} // namespace

std::vector<WordHistory> wordHistories(const VocabularyStore& store) {
    std::vector<WordHistory> words;
    for (VocabItem& item : store.items("")) {
        auto encounters = store.encounters(item.word.id);
        words.push_back({std::move(item), std::move(encounters)});
    }
    return words;
}

std::optional<ExportFormat> exportFormat(std::string_view name) {
    if (name == "csv") return ExportFormat::csv;
    if (name == "json") return ExportFormat::json;
    if (name == "anki") return ExportFormat::anki;
    return std::nullopt;
}

std::string exportedItems(const std::vector<VocabItem>& items, TableFormat format,
                          const Calendar& calendar) {
    const bool isCSV = format == TableFormat::csv;
    const auto append = isCSV ? appendCSVLine : appendTSVLine;
    std::string table = isCSV ? byteOrderMark : "";
    append(table, {"单词", "音标", "释义", "遇到次数", "下次复习", "最近的句子", "来源"});
    for (const auto& [word, card, latest, encounterCount] : items)
        append(table, {word.headword, word.phonetic, word.brief, std::to_string(encounterCount),
                       calendar.text(card.due), latest ? orEmpty(latest->sentence) : "",
                       latest ? latest->source.label() : ""});
    return table;
}

std::string exportedBook(const std::vector<WordHistory>& words, ExportFormat format,
                         const Calendar& calendar) {
    switch (format) {
    case ExportFormat::csv:
        return csv(words, calendar);
    case ExportFormat::json:
        return json(words);
    case ExportFormat::anki:
        break;
    }
    return anki(words);
}

} // namespace tavik
