#include "Lookup/LookupService.h"
#include "Support/RealDictionary.h"
#include "Text/TextUtil.h"
#include "Text/Unicode.h"

#include <gtest/gtest.h>

namespace tavik {
namespace {

using test::RealDictionaryTest;

TEST_F(RealDictionaryTest, wordsAsPeopleSelectThemBecomeTheirEntry) {
    const std::vector<std::pair<std::string, std::string>> cases{
        {"  Running ", "run"},   {"went.", "go"},
        {"“children”", "child"}, {"don’t", "don't"},
        {"does", "do"},          {"geese", "goose"},
        {"was", "be"},           {"better", "good"},
        {"gave\nup", "give up"}, {"took off", "take off"},
        {"News", "news"},        {"his", "his"},
        {"species", "species"},  {"Thomas", "thomas"},
        {"number", "number"},    {"studies", "study"}};
    VocabularyStore book(":memory:");
    const LookupService service(&*dictionary, book);
    for (const auto& [selection, lemma] : cases) {
        const LookupResult lookup = service.lookup(selection, std::nullopt, {});
        EXPECT_EQ(lookup.lemma, lemma) << selection;
        EXPECT_TRUE(lookup.isWord) << selection;
        EXPECT_FALSE(lookup.entry->brief().empty()) << selection;
    }
}

TEST_F(RealDictionaryTest, entriesAreCleanText) {
    for (const char* const word : {"run", "about-turn", "apple", "take", "beautiful", "the"}) {
        const auto entry = dictionary->entry(word);
        ASSERT_TRUE(entry) << word;
        EXPECT_EQ(entry->phonetic.find_first_of("\\:',"), std::string::npos) << entry->phonetic;
        for (const std::string& sense : entry->translations) {
            EXPECT_EQ(sense.find("\\n"), std::string::npos) << sense;
            EXPECT_EQ(printable(sense), sense);
        }
    }
    EXPECT_EQ(dictionary->entry("about-turn")->phonetic, "əbajtˈtəːn");
}

TEST_F(RealDictionaryTest, examplesHoldTheWordOrOneOfItsForms) {
    VocabularyStore book(":memory:");
    const LookupService service(&*dictionary, book);
    for (const std::string word : {"run", "give up", "child", "mouse", "abandon"}) {
        const LookupResult lookup = service.lookup(word, std::nullopt, {});
        EXPECT_EQ(lookup.examples.size(), 3U) << word;
        std::vector<std::string> forms{word, "gave up", "giving up", "given up"};
        for (const auto& [key, form] : lookup.entry->exchange)
            forms.push_back(form);
        for (const ExampleSentence& example : lookup.examples)
            EXPECT_TRUE(TextUtil::highlight(example.en, forms)) << example.en;
    }
}

TEST_F(RealDictionaryTest, commonWordsAndPhrasesAreSuggestedFirst) {
    const std::vector<std::pair<std::string, std::string>> cases{
        {"a", "a, and, at, "},
        {"app", "APP, appear, apply, approach, "},
        {"the", "the, they, "},
        {"give u", "give up, "},
        {"don’", "don't, "},
        {"new yor", "New York, "},
        {"run", "run, running, "},
        {"ubiq", "ubiquitous, ubiquity, "},
        {"polish", "Polish, polished, "}};
    for (const auto& [typed, expected] : cases) {
        std::string words;
        for (const Suggestion& suggestion : dictionary->suggestions(typed, 10))
            words += suggestion.word + ", ";
        EXPECT_TRUE(words.starts_with(expected)) << words;
    }
}

} // namespace
} // namespace tavik
