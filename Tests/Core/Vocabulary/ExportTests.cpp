#include "Support/Book.h"
#include "Vocabulary/VocabularyExport.h"

#include <gmock/gmock.h>
#include <nlohmann/json.hpp>

namespace tavik {
namespace {

using test::day;
using testing::EndsWith;
using testing::HasSubstr;
using testing::StartsWith;

class ExportTest : public test::BookTest {
protected:
    ExportTest() {
        DictEntry entry;
        entry.phonetic = "rʌn";
        entry.translations = {"n. \"跑\", <快>"};
        const SourceInfo source{"Firefox", {}, "https://www.example.com/a"};
        book.add("run", "run", entry, "ran", "=He ran,\nfast & \"far\".\tEnd", "跑", source,
                 day(0));
        book.add("run", "run", entry, "run", "Run!", {}, {}, day(1));
        book.add("go", "go", {}, "go", {}, {}, {}, day(2));
    }

    std::string exported(ExportFormat format) {
        return exportedBook(wordHistories(book), format, Calendar("Asia/Shanghai"));
    }

    VocabularyStore book{path};
};

TEST_F(ExportTest, csvHasALineForEachEncounterAndNoFormulas) {
    const std::string csv = exported(ExportFormat::csv);
    EXPECT_THAT(csv, StartsWith("\xEF\xBB\xBF单词,原形,音标,释义,"));
    EXPECT_THAT(csv, HasSubstr("\r\ngo,go,,,2025-06-17 23:06,新词,2025-06-17 23:06,0,0,,go,,,,,"));
    EXPECT_THAT(csv, HasSubstr("\r\nrun,run,rʌn,\"n. \"\"跑\"\", <快>\",2025-06-15 23:06,"));
    EXPECT_THAT(csv, HasSubstr(",ran,\"'=He ran,\nfast & \"\"far\"\".\tEnd\",跑,Firefox,"
                               "https://www.example.com/a,2025-06-15 23:06\r\n"));
    EXPECT_THAT(csv, HasSubstr(",run,Run!,,,,2025-06-16 23:06\r\n"));
}

TEST_F(ExportTest, rowsAreALineEachForSpreadsheetsAndForPasting) {
    const Calendar calendar("Asia/Shanghai");
    const auto items = book.items("");
    EXPECT_EQ(exportedItems(items, TableFormat::csv, calendar),
              "\xEF\xBB\xBF单词,音标,释义,遇到次数,下次复习,最近的句子,来源\r\n"
              "go,,,1,2025-06-17 23:06,,\r\n"
              "run,rʌn,\"n. \"\"跑\"\", <快>\",2,2025-06-15 23:06,Run!,\r\n");
    book.add("run", "run", {}, "ran", "=He ran,\nfar.\tEnd", {}, {"Firefox", {}, {}}, day(3));
    EXPECT_THAT(exportedItems(book.items(""), TableFormat::tsv, calendar),
                EndsWith("\nrun\trʌn\tn. \"跑\", <快>\t3\t2025-06-15 23:06\t"
                         "'=He ran, far. End\tFirefox\n"));
}

TEST_F(ExportTest, jsonHoldsEverythingUnderTheFieldsNames) {
    const auto words = nlohmann::json::parse(exported(ExportFormat::json));
    ASSERT_EQ(words.size(), 2U);
    const auto& run = words[1];
    EXPECT_EQ(run["word"]["lemma"], "run");
    EXPECT_EQ(run["word"]["createdAt"], "2025-06-15T15:06:40.000Z");
    EXPECT_EQ(run["card"]["state"], "new");
    EXPECT_EQ(run["card"]["lastReview"], nullptr);
    ASSERT_EQ(run["encounters"].size(), 2U);
    EXPECT_EQ(run["encounters"][1]["sentence"], "=He ran,\nfast & \"far\".\tEnd");
    EXPECT_EQ(run["encounters"][1]["source"]["appName"], "Firefox");
    EXPECT_EQ(run["encounters"][0]["contextMeaning"], nullptr);
}

TEST_F(ExportTest, ankiGetsOneNoteAWordWithTheWordBold) {
    EXPECT_EQ(exported(ExportFormat::anki),
              "#separator:tab\n#html:true\n#columns:单词\t音标\t释义\t句子\n"
              "go\t\t\t\n"
              "run\trʌn\tn. &quot;跑&quot;, &lt;快&gt;\t<b>Run</b>!<br><br>=He <b>ran</b>,<br>fast "
              "&amp; &quot;far&quot;. End<br>跑<br><small>Firefox · example.com</small>\n");
}

} // namespace
} // namespace tavik
