#include "Explanation/LLMError.h"
#include "Lookup/LookupService.h"
#include "Support/Book.h"
#include "Support/LoopbackServer.h"
#include "Support/SampleDictionary.h"

#include <gtest/gtest.h>

#include <thread>
#include <vector>

namespace tavik {
namespace {

using test::day;

class LookupServiceTest : public test::BookTest {
protected:
    LookupResult lookUp(std::string_view selection) const {
        return service.lookup(selection, std::nullopt, {});
    }

    static std::string sampleDictionary(const std::string& file) {
        test::makeSampleDictionary(file);
        return file;
    }

    OfflineDictionary dictionary{sampleDictionary(directory.file("dict.sqlite"))};
    VocabularyStore book{path};
    LookupService service{&dictionary, book};
    HTTPSession session;
};

TEST_F(LookupServiceTest, aSelectionBecomesItsBaseFormWithEntryAndExamples) {
    const SourceInfo source{"Firefox", "firefox", "https://example.com"};
    const auto result = service.lookup("  Running ", "He was running.", source);
    EXPECT_EQ(result.selection, "Running");
    EXPECT_EQ(result.sentence, "He was running.");
    EXPECT_EQ(result.source, source);
    EXPECT_EQ(result.lemma, "run");
    EXPECT_EQ(result.headword(), "run");
    EXPECT_EQ(result.entry->word, "run");
    EXPECT_EQ(result.examples.size(), 3U);
    EXPECT_TRUE(result.isWord);
    EXPECT_FALSE(result.alreadySaved);
}

TEST_F(LookupServiceTest, whatIsNoCandidateIsNotLookedUpButMayBeSaved) {
    for (const char* const selection : {"Give up on it now", "COVID-19", "你好。", ""}) {
        const auto result = lookUp(selection);
        EXPECT_FALSE(result.isWord) << selection;
        EXPECT_TRUE(result.examples.empty()) << selection;
    }
    EXPECT_EQ(lookUp("COVID-19").lemma, "covid-19");
    service.save(lookUp("COVID-19"), std::nullopt, day(0));
    EXPECT_TRUE(lookUp("covid-19").alreadySaved);
    const LookupService without(nullptr, book);
    EXPECT_EQ(without.lookup("Runs", {}, {}).lemma, "runs");
}

TEST_F(LookupServiceTest, aCurlyApostropheIsStraightenedOnlyForAHeadword) {
    EXPECT_EQ(lookUp("Don’t").lemma, "don't");
    EXPECT_EQ(lookUp("Don’t").selection, "Don’t");
    EXPECT_TRUE(lookUp("don’t").isWord);
    EXPECT_EQ(lookUp("Shan’t").lemma, "shan’t");
}

TEST_F(LookupServiceTest, aSavedWordKeepsItsSentenceMeaningAndSource) {
    int changes = 0;
    book.setOnChange([&] { ++changes; });
    const SourceInfo source{"Firefox", {}, {}};
    const auto result = service.lookup("running", "He was running.", source);
    const auto added = service.save(result, "跑步", day(0));
    EXPECT_TRUE(added.isNewWord);
    EXPECT_EQ(changes, 1);
    const auto item = book.item(added.wordID);
    EXPECT_EQ(item->word.headword, "run");
    EXPECT_EQ(item->word.brief, "n. 跑");
    EXPECT_EQ(item->latest->selection, "running");
    EXPECT_EQ(item->latest->contextMeaning, "跑步");
    EXPECT_EQ(item->latest->source, source);
    EXPECT_TRUE(lookUp("RUN").alreadySaved);
}

TEST_F(LookupServiceTest, theCacheKeyMindsTheSentenceButNotTheCaseOfTheWord) {
    const auto key = [](const char* selection, const std::optional<std::string>& sentence) {
        return LookupService::cacheKey(selection, sentence);
    };
    EXPECT_EQ(key("Bank", "By the bank."), key("bank", "By the bank."));
    EXPECT_NE(key("bank", "By the bank."), key("bank", "by the bank."));
    EXPECT_EQ(key("bank", {}), key("bank", ""));
    EXPECT_EQ(key("ÉTÉ", {}), key("été", {}));
    // printf 'run\x1fI run.' | sha256sum
    EXPECT_EQ(key("Run", "I run."),
              "1207fdcf75732a0a3292bd56bfad78c2422e7e1cb9fbaa93f54d1005d7aa3301");
}

TEST_F(LookupServiceTest, aKnownExplanationNeedsNeitherModelNorNetwork) {
    const ContextExplanation explanation{"跑", "我跑。", {}};
    const auto result = service.lookup("run", "I run.", {});
    const LLMClient nobody({}, session);
    try {
        service.explain(result, nobody);
        FAIL();
    } catch (const LLMError& error) {
        EXPECT_EQ(error.kind, LLMError::Kind::notConfigured);
        EXPECT_STREQ(error.what(), "未配置大模型");
    }
    book.cacheExplanation(explanation, LookupService::cacheKey("run", "I run."), day(0));
    EXPECT_EQ(service.explain(service.lookup("RUN ", "I run.", {}), nobody), explanation);
}

TEST_F(LookupServiceTest, whatTheModelSaysIsKeptUnlessItFailsOrSaysNothing) {
    const test::LoopbackServer server;
    const auto ask = [&](const std::string& scenario) {
        const LLMClient client(
            {LLMConfig::Provider::openAICompatible, "m", server.baseURL(scenario), ""}, session);
        return service.explain(service.lookup("run", "I run.", {}), client);
    };
    EXPECT_THROW(ask("too-many"), LLMError);
    EXPECT_TRUE(ask("empty-object").isEmpty());
    const std::string key = LookupService::cacheKey("run", "I run.");
    EXPECT_EQ(book.cachedExplanation(key), std::nullopt);
    // Several ask at once over one session.
    std::vector<std::jthread> threads;
    for (int i = 0; i < 4; ++i)
        threads.emplace_back([&] { EXPECT_FALSE(ask("success").isEmpty()); });
    threads.clear();
    const auto kept = book.cachedExplanation(key);
    ASSERT_TRUE(kept);
    const std::size_t asked = server.requests().size();
    EXPECT_EQ(ask("too-many"), *kept);
    EXPECT_EQ(server.requests().size(), asked);
}

} // namespace
} // namespace tavik
