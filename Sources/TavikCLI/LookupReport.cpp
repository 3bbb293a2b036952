#include "TavikCLI/LookupReport.h"

#include "Dictionary/DictionaryJSON.h"
#include "Dictionary/DictionaryLabels.h"
#include "Text/CharacterClasses.h"
#include "Text/Unicode.h"

#include <nlohmann/json.hpp>

#include <algorithm>

namespace tavik {
namespace {

constexpr std::size_t maxSentenceCharacters = 400;
constexpr std::size_t maxDefinitions = 5;

std::string headline(const Report& report, const DictEntry& entry) {
    std::string line = report.inStyle(TextStyle::bold, entry.word);
    if (!entry.phonetic.empty())
        line += "  " + report.inStyle(TextStyle::faint, '/' + entry.phonetic + '/');
    std::string marks;
    for (int star = 0; star < std::min(entry.collins, 5); ++star)
        marks += "★";
    if (entry.oxford) marks += " 牛津核心";
    for (const std::string& tag : entry.tags)
        marks.append(" ").append(tagLabel(tag));
    const std::string_view shown = trimmed(marks, isWhiteSpace);
    return shown.empty() ? line : line + "  " + report.inStyle(TextStyle::faint, shown);
}

std::string inflectionLine(const DictEntry& entry) {
    std::string line;
    for (const auto& [label, form] : inflections(entry)) {
        if (!line.empty()) line += " · ";
        line.append(label).append(" ").append(form);
    }
    return line;
}

void addEntry(Report& report, const LookupResult& lookup) {
    const DictEntry& entry = *lookup.entry;
    report.line(headline(report, entry));
    const std::string selected = TextUtil::normalizeWord(lookup.selection);
    if (lookup.alreadySaved) report.paragraph("已在生词本里", 2, TextStyle::accent);
    if (selected != lookup.lemma)
        report.paragraph(selected + " → " + lookup.lemma, 2, TextStyle::faint);
    for (const std::string& sense : entry.translations)
        report.paragraph(sense, 2);
    if (const std::string forms = inflectionLine(entry); !forms.empty()) {
        report.heading("变形");
        report.paragraph(forms, 2);
    }
    if (entry.definitions.empty()) return;
    report.heading("英文释义");
    const std::size_t shown = std::min(entry.definitions.size(), maxDefinitions);
    for (std::size_t i = 0; i < shown; ++i)
        report.paragraph(entry.definitions[i], 2);
}

std::string reasonForNothing(const LookupResult& lookup) {
    if (TextUtil::isLookupCandidate(lookup.selection)) return "没有查到";
    return "没有查到：只能查英文单词和四个词以内的短语";
}

void addExamples(Report& report, const std::vector<ExampleSentence>& examples) {
    if (examples.empty()) return;
    report.heading("例句");
    for (const ExampleSentence& example : examples) {
        report.paragraph(example.en, 2);
        if (!example.zh.empty()) report.paragraph(example.zh, 4, TextStyle::faint);
    }
}

void addContext(Report& report, const SentenceContext& context) {
    report.heading("所在句子");
    if (!context.highlight) {
        report.paragraph(context.sentence, 2);
        return;
    }
    const auto& [before, match, after] = *context.highlight;
    report.marked(before, match, after, 2);
}

std::optional<SentenceContext> sentenceContext(const LookupResult& lookup, std::string_view text) {
    const std::string_view given = trimmed(text, isWhiteSpace);
    if (given.empty()) return std::nullopt;
    const auto forms = lookup.forms();
    const auto found = TextUtil::highlight(given, forms);
    if (!found) return SentenceContext{std::string(given), std::nullopt};
    const auto location = static_cast<std::int64_t>(utf16FromUTF8(found->before).size());
    const auto length = static_cast<std::int64_t>(utf16FromUTF8(found->match).size());
    const auto cut =
        TextUtil::sentence(utf16FromUTF8(given), {location, length}, maxSentenceCharacters);
    std::string sentence = cut.value_or(std::string(given));
    auto highlight = TextUtil::highlight(sentence, {found->match});
    return SentenceContext{std::move(sentence), std::move(highlight)};
}

} // namespace

WordInContext lookUpInContext(const LookupService& service, std::string_view selection,
                              std::string_view text, const SourceInfo& source) {
    WordInContext word{service.lookup(selection, std::nullopt, source), std::nullopt};
    word.context = sentenceContext(word.lookup, text);
    if (word.context) word.lookup.sentence = word.context->sentence;
    return word;
}

nlohmann::ordered_json lookupJSON(const LookupResult& lookup) {
    nlohmann::ordered_json json;
    json["selection"] = lookup.selection;
    json["sentence"] = nullptr;
    if (lookup.sentence) json["sentence"] = *lookup.sentence;
    json["lemma"] = lookup.lemma;
    json["headword"] = lookup.headword();
    json["isWord"] = lookup.isWord;
    json["alreadySaved"] = lookup.alreadySaved;
    json["entry"] = nullptr;
    if (lookup.entry) json["entry"] = nlohmann::json(*lookup.entry);
    json["examples"] = nlohmann::json(lookup.examples);
    return json;
}

void addLookup(Report& report, const WordInContext& word) {
    const auto& [lookup, context] = word;
    if (lookup.entry)
        addEntry(report, lookup);
    else
        report.line(report.inStyle(TextStyle::bold, lookup.selection) + "  "
                    + reasonForNothing(lookup));
    addExamples(report, lookup.examples);
    if (context) addContext(report, *context);
}

nlohmann::ordered_json videosJSON(const LookupResult& lookup, Accent accent) {
    nlohmann::ordered_json videos;
    for (const VideoSource source : allVideoSources)
        videos[std::string(rawValue(source))] =
            VideoLinks::url(lookup.headword(), source, accent).value_or("");
    return videos;
}

void addVideos(Report& report, const LookupResult& lookup, Accent accent) {
    report.heading("视频例句");
    for (const VideoSource source : allVideoSources)
        if (const auto address = VideoLinks::url(lookup.headword(), source, accent))
            report.line("  " + padded(std::string(label(source)), 30) + *address);
}

void addExplanation(Report& report, const ContextExplanation& explanation) {
    report.heading("在这句话里");
    if (explanation.isEmpty()) report.paragraph("模型没有给出说明，可以再问一次", 2);
    report.paragraph(explanation.meaningInContext, 2);
    if (!explanation.translation.empty()) report.paragraph("译文：" + explanation.translation, 2);
    addExamples(report, explanation.examples);
}

} // namespace tavik
