#include "Shell/CaptureProbeReport.h"

#include "Environment/StartOptionHint.h"
#include "Text/Unicode.h"

#include <nlohmann/json.hpp>

#include <algorithm>
#include <array>
#include <cmath>
#include <cstddef>
#include <optional>
#include <string_view>
#include <tuple>
#include <utility>

namespace tavik {
namespace {

using Accessibility = CaptureProbeReport::Accessibility;
using json = nlohmann::ordered_json;
using Row = std::array<std::string, 6>;

constexpr std::size_t longestName = 30;
constexpr std::size_t gap = 2;

bool isRead(const ProbeRecord& record) {
    return record.reader == ProbeReader::axMarker || record.reader == ProbeReader::axText
           || record.reader == ProbeReader::selection;
}

std::string nameOf(const ProbeRecord& record) {
    const std::string name = record.name ? *record.name : record.identifier.value_or("");
    if (!name.empty()) return printable(firstCharacters(name, longestName));
    return "进程 " + std::to_string(record.processIdentifier);
}

std::string inMilliseconds(double milliseconds) {
    return std::to_string(std::lround(milliseconds)) + " 毫秒";
}

std::string adviceText(const ProbeRecord& record) {
    switch (record.advice) {
    case ProbeAdvice::selectSomething:
        return "现在没有选中文字，选中一些再检查。";
    case ProbeAdvice::useSelection:
        return record.reader == ProbeReader::selection
                   ? "读的是最近一次选中的内容，不带句子和位置。"
                   : "先选中文字，再按快捷键：读的是最近一次选中的内容。";
    case ProbeAdvice::startOption:
        return startOptionHint(record.identifier.value_or(""));
    case ProbeAdvice::restart:
        return "它没有接入无障碍功能，请退出后重新启动它；如果仍然如此，只能用剪贴板。";
    case ProbeAdvice::clipboardOnly:
        return "只能用剪贴板：按快捷键时替你复制一次，再恢复原来的内容。";
    case ProbeAdvice::notResponding:
        return "它没有及时响应，可能正忙，也可能卡住了。";
    case ProbeAdvice::passwordField:
        return "输入焦点在密码框里，或者在不说明用途的地方：Tavik 不读。";
    case ProbeAdvice::notAsked:
        return "时间到了，没有检查它。";
    case ProbeAdvice::none:
        break;
    }
    return "";
}

std::string remark(const ProbeRecord& record) {
    const std::string selected =
        record.selectedCharacters == 0
            ? ""
            : "选中了 " + std::to_string(record.selectedCharacters) + " 个字符。";
    return selected + adviceText(record);
}

Row rowOf(const ProbeRecord& record) {
    const bool hasReader = record.reader != ProbeReader::none;
    const auto found = [&](bool isFound) -> std::string {
        if (!isRead(record)) return "—";
        return isFound ? "有" : "无";
    };
    return {nameOf(record),
            hasReader ? std::string(text(record.reader)) : "—",
            inMilliseconds(record.milliseconds),
            found(record.hasSentence),
            found(record.hasPlace),
            remark(record)};
}

/// The rows below each other, every column as wide as its widest cell.
std::string aligned(const std::vector<Row>& rows) {
    std::array<std::size_t, std::tuple_size_v<Row>> widths{};
    for (const Row& row : rows)
        for (std::size_t column = 0; column + 1 < row.size(); ++column)
            widths.at(column) = std::max(widths.at(column), displayWidth(row.at(column)) + gap);
    std::string lines;
    for (const Row& row : rows) {
        std::string line;
        for (std::size_t column = 0; column < row.size(); ++column) {
            const std::size_t width = displayWidth(row.at(column));
            line += row.at(column);
            line.append(std::max(widths.at(column), width) - width, ' ');
        }
        line.erase(line.find_last_not_of(' ') + 1);
        lines += line + '\n';
    }
    return lines;
}

std::string_view accessibilityText(Accessibility accessibility) {
    switch (accessibility) {
    case Accessibility::borrowed:
        return "无障碍功能原来没有打开：检查时临时打开，现在已经关上。"
               "先打开它，再启动上面的程序，Tavik 才能读取。\n";
    case Accessibility::leftOn:
        return "无障碍功能原来没有打开：检查时打开了，没能再关上。\n";
    case Accessibility::unreachable:
        return "连不上无障碍总线（at-spi2-core），只能用剪贴板，读不到句子和位置。\n";
    case Accessibility::on:
        break;
    }
    return "";
}

std::string_view accessibilityName(Accessibility accessibility) {
    constexpr std::array<std::string_view, 4> names{"on", "borrowed", "leftOn", "unreachable"};
    return names.at(static_cast<std::size_t>(accessibility));
}

std::string summary(const CaptureProbeReport& report) {
    const auto& all = report.applications;
    if (all.empty()) return "没有找到有窗口的程序。\n";
    const auto number = [](auto count) { return std::to_string(count); };
    const auto withSentence = [](const ProbeRecord& record) { return record.hasSentence; };
    return "共 " + number(all.size()) + " 个程序，读到 "
           + number(std::ranges::count_if(all, isRead)) + " 个程序里选中的文字，其中 "
           + number(std::ranges::count_if(all, withSentence)) + " 个带句子；用时 "
           + inMilliseconds(report.milliseconds) + "。\n";
}

double rounded(double milliseconds) {
    constexpr double tenths = 10;
    return std::round(milliseconds * tenths) / tenths;
}

json jsonFrom(const ProbeStep& step) {
    return {{"reader", text(step.reader)},
            {"milliseconds", rounded(step.milliseconds)},
            {"hasText", step.hasText}};
}

template<typename T>
json orNull(const std::optional<T>& value) {
    return value ? json(*value) : json(nullptr);
}

json jsonFrom(const ProbeRecord& record) {
    auto steps = json::array();
    for (const ProbeStep& step : record.steps)
        steps.push_back(jsonFrom(step));
    return {{"name", orNull(record.name)},
            {"identifier", orNull(record.identifier)},
            {"processIdentifier", record.processIdentifier},
            {"reader", text(record.reader)},
            {"steps", std::move(steps)},
            {"milliseconds", rounded(record.milliseconds)},
            {"hasSentence", record.hasSentence},
            {"hasPlace", record.hasPlace},
            {"hasSelection", orNull(record.hasSelection)},
            {"selectedCharacters", record.selectedCharacters},
            {"isOnAccessibilityBus", record.isOnAccessibilityBus},
            {"describesPages", orNull(record.describesPages)},
            {"advice", text(record.advice)}};
}

} // namespace

std::string probeTable(const CaptureProbeReport& report) {
    std::vector<Row> rows{{"程序", "读取方式", "耗时", "句子", "位置", "说明"}};
    for (const ProbeRecord& record : report.applications)
        rows.push_back(rowOf(record));
    std::string table = aligned(rows);
    table += summary(report);
    return table.append(accessibilityText(report.accessibility));
}

std::string probeJSON(const CaptureProbeReport& report) {
    auto applications = json::array();
    for (const ProbeRecord& record : report.applications)
        applications.push_back(jsonFrom(record));
    const json document = {{"accessibility", accessibilityName(report.accessibility)},
                           {"milliseconds", rounded(report.milliseconds)},
                           {"applications", std::move(applications)}};
    return document.dump(2, ' ', false, json::error_handler_t::replace) + '\n';
}

} // namespace tavik
