#include "Shell/CaptureProbeReport.h"
#include "Text/CharacterClasses.h"
#include "Text/Unicode.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

namespace tavik {
namespace {

using testing::HasSubstr;
using testing::Not;

CaptureProbeReport sample() {
    ProbeRecord editor;
    editor.name = "编辑器";
    editor.reader = ProbeReader::axText;
    editor.milliseconds = 12.34;
    editor.hasSentence = true;
    editor.selectedCharacters = 3;
    editor.advice = ProbeAdvice::none;
    ProbeRecord browser;
    browser.name = "bad\x1b[31m\xff" + std::string(500, 'x');
    browser.identifier = "google-chrome\n";
    browser.advice = ProbeAdvice::startOption;
    browser.processIdentifier = 77;
    return {CaptureProbeReport::Accessibility::borrowed, {editor, browser}, 1234};
}

/// In terminal columns, where `text` begins in its line.
std::size_t columnOf(const std::string& text, std::string_view line) {
    return displayWidth(line.substr(0, line.find(text)));
}

TEST(CaptureProbeReportTests, theTableIsAlignedAndSaysWhatToDo) {
    const std::string table = probeTable(sample());
    const auto lines = split(table, isNewline);
    ASSERT_EQ(lines.size(), 5U) << table;
    EXPECT_EQ(columnOf("读取方式", lines[0]), columnOf("ax-text", lines[1]));
    EXPECT_EQ(columnOf("说明", lines[0]), columnOf("选中了 3 个字符", lines[1]));
    EXPECT_EQ(columnOf("说明", lines[0]), columnOf("「google-chrome", lines[2]));
    EXPECT_THAT(std::string(lines[2]), HasSubstr("--force-renderer-accessibility"));
    EXPECT_THAT(table, Not(HasSubstr("\x1b")));
    EXPECT_LT(displayWidth(lines[2]), 250U);
    EXPECT_THAT(std::string(lines[3]), HasSubstr("共 2 个程序，读到 1 个"));
    EXPECT_THAT(std::string(lines[4]), HasSubstr("现在已经关上"));
}

TEST(CaptureProbeReportTests, theDocumentIsValidWhateverProgramsAreCalled) {
    const auto document = nlohmann::json::parse(probeJSON(sample()));
    EXPECT_EQ(document["accessibility"], "borrowed");
    const auto& editor = document["applications"][0];
    EXPECT_EQ(editor["reader"], "ax-text");
    EXPECT_EQ(editor["milliseconds"], 12.3);
    EXPECT_TRUE(editor["hasSelection"].is_null());
    const auto& browser = document["applications"][1];
    EXPECT_EQ(browser["identifier"], "google-chrome\n");
    EXPECT_EQ(browser["advice"], "startOption");
    EXPECT_THAT(browser["name"].get<std::string>(), HasSubstr("\ufffd"));
}

TEST(CaptureProbeReportTests, whatCannotBeReachedAndAnEmptyDesktopAreToldInChinese) {
    const CaptureProbeReport nothing{CaptureProbeReport::Accessibility::unreachable, {}, 5};
    EXPECT_THAT(probeTable(nothing), HasSubstr("没有找到有窗口的程序"));
    EXPECT_THAT(probeTable(nothing), HasSubstr("连不上无障碍总线"));
}

} // namespace
} // namespace tavik
