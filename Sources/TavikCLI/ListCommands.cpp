#include "TavikCLI/ListCommands.h"

#include "TavikCLI/Book.h"
#include "TavikCLI/JSONLine.h"
#include "TavikCLI/VocabularyReport.h"
#include "TavikTerminal/CommandLine.h"
#include "Text/CharacterClasses.h"
#include "Text/Unicode.h"
#include "Vocabulary/VocabularyJSON.h"

#include <nlohmann/json.hpp>
#include <unistd.h>

#include <array>
#include <iostream>

namespace tavik {
namespace {

constexpr const char* itemsJSON = "每个单词输出一行 JSON";

void printItems(const std::vector<VocabItem>& items, bool asJSON) {
    if (asJSON) {
        for (const VocabItem& item : items)
            std::cout << jsonLine(nlohmann::json(item)) << '\n';
        return;
    }
    const Terminal terminal = Terminal::of(STDOUT_FILENO);
    Report report(terminal);
    addItems(report, items, {terminal, Calendar::current(), currentDate()});
    std::cout << report.finished();
}

/// The figures of the book at one moment.
struct Stats {
    std::int64_t wordCount = 0;
    std::int64_t dueNow = 0;
    std::int64_t dueToday = 0;
    std::int64_t dueTomorrow = 0;
    std::int64_t dueThisWeek = 0;
    std::int64_t reviewedToday = 0;
    std::int64_t reviewedThisWeek = 0;
    std::array<std::int64_t, 4> states{};
};

Stats collectStats(const VocabularyStore& book, const Calendar& calendar, Date now) {
    constexpr int week = 7;
    Stats stats;
    stats.wordCount = book.wordCount();
    stats.dueNow = book.dueCount(now);
    stats.dueToday = book.dueCount(calendar.startOfDay(now, 1));
    stats.dueTomorrow = book.dueCount(calendar.startOfDay(now, 2)) - stats.dueToday;
    stats.dueThisWeek = book.dueCount(calendar.startOfDay(now, week));
    stats.reviewedToday = book.reviewCount(calendar.startOfDay(now));
    stats.reviewedThisWeek = book.reviewCount(calendar.startOfDay(now, 1 - week));
    for (const VocabItem& item : book.items(""))
        ++stats.states.at(static_cast<std::size_t>(item.card.state));
    return stats;
}

nlohmann::ordered_json statsJSON(const Stats& stats) {
    nlohmann::ordered_json json{{"wordCount", stats.wordCount},
                                {"dueNow", stats.dueNow},
                                {"dueToday", stats.dueToday},
                                {"dueTomorrow", stats.dueTomorrow},
                                {"dueThisWeek", stats.dueThisWeek},
                                {"reviewedToday", stats.reviewedToday},
                                {"reviewedThisWeek", stats.reviewedThisWeek}};
    for (std::size_t i = 0; i < stats.states.size(); ++i)
        json["states"][std::string(rawValue(static_cast<CardState>(i)))] = stats.states[i];
    return json;
}

std::string statsText(const Stats& stats) {
    const Terminal terminal = Terminal::of(STDOUT_FILENO);
    Report report(terminal);
    const auto words = [](std::int64_t count) { return std::to_string(count) + " 个"; };
    std::string states;
    for (std::size_t i = 0; i < stats.states.size(); ++i)
        states += (i == 0 ? "" : "，") + std::string(label(static_cast<CardState>(i))) + ' '
                  + std::to_string(stats.states[i]);
    report.paragraph("生词：" + words(stats.wordCount) + "（" + states + "）", 0);
    report.paragraph("现在该复习：" + words(stats.dueNow), 0);
    report.paragraph("到今天结束：" + words(stats.dueToday) + "，明天再加 "
                         + words(stats.dueTomorrow) + "，七天内共 " + words(stats.dueThisWeek),
                     0);
    report.paragraph("复习过：今天 " + std::to_string(stats.reviewedToday) + " 次，七天内 "
                         + std::to_string(stats.reviewedThisWeek) + " 次",
                     0);
    return report.finished();
}

} // namespace

ListCommand::ListCommand(CLI::App& app) : Command(app, "list", "列出或搜索生词本里的单词") {
    options().add_option("搜索", search, "只列出单词、释义或原句里有这些文字的");
    addJSONFlag(asJSON, itemsJSON);
    options().footer("最新保存的在最前面。搜索里的 % 代表任何文字，_ 代表任何一个字。\n"
                     "退出码：0 有结果，或者没有搜索；2 搜索没有结果；1 出错。");
}

int ListCommand::run() const {
    return withBook([&](const VocabularyStore& book) {
        const std::string wanted = phraseOf(search);
        const auto items = book.items(wanted);
        printItems(items, asJSON);
        if (!items.empty()) return exitOK;
        if (book.wordCount() == 0)
            std::cerr << "生词本还是空的。用 tavik-cli save 保存第一个单词。\n";
        else
            std::cerr << "没有找到匹配的单词。\n";
        return trimmed(wanted, isWhiteSpace).empty() ? exitOK : exitNotFound;
    });
}

DueCommand::DueCommand(CLI::App& app) : Command(app, "due", "列出现在该复习的单词") {
    options()
        .add_option("--limit", limit, "最多列出几个，默认 500")
        ->option_text("个数")
        ->check(within(0, maxLimit, "应是 0 到 1000000 的整数"));
    addJSONFlag(asJSON, itemsJSON);
    options().footer("过期最久的在最前面。");
}

int DueCommand::run() const {
    return withBook([&](const VocabularyStore& book) {
        const Date now = currentDate();
        printItems(book.dueItems(now, limit), asJSON);
        if (!asJSON && book.dueCount(now) == 0) std::cerr << "现在没有需要复习的单词。\n";
        return exitOK;
    });
}

StatsCommand::StatsCommand(CLI::App& app)
    : Command(app, "stats", "生词本有多大，什么时候有多少词要复习") {
    addJSONFlag(asJSON, "输出一行 JSON");
}

int StatsCommand::run() const {
    return withBook([&](const VocabularyStore& book) {
        const Stats stats = collectStats(book, Calendar::current(), currentDate());
        std::cout << (asJSON ? jsonLine(statsJSON(stats)) + '\n' : statsText(stats));
        return exitOK;
    });
}

} // namespace tavik
