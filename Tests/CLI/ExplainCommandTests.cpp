#include "Base/PreferencesFile.h"
#include "Support/ChildProcess.h"
#include "Support/LoopbackServer.h"
#include "Support/PseudoTerminal.h"
#include "Support/SampleDictionary.h"
#include "Support/TemporaryDirectory.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

namespace tavik {
namespace {

using nlohmann::json;
using testing::AllOf;
using testing::HasSubstr;
using testing::Not;

class ExplainCommandTest : public testing::Test {
protected:
    ExplainCommandTest() { test::makeSampleDictionary(dictionary); }

    /// The program with a model at `baseURL`, and a key in the environment unless it is empty.
    std::vector<std::string> command(const std::vector<std::string>& arguments,
                                     const std::string& baseURL, const std::string& key) const {
        std::vector<std::string> all{"/usr/bin/env",
                                     "TAVIK_DATA_DIR=" + data,
                                     "XDG_CONFIG_HOME=" + settings,
                                     "TAVIK_LLM_PROVIDER=openai",
                                     "TAVIK_LLM_MODEL=m",
                                     "TAVIK_LLM_BASE_URL=" + baseURL,
                                     "TAVIK_LLM_API_KEY=" + key,
                                     TAVIK_CLI};
        all.insert(all.end(), arguments.begin(), arguments.end());
        all.insert(all.end(), {"--dictionary", dictionary});
        return all;
    }

    test::ProcessResult run(const std::vector<std::string>& arguments, const std::string& baseURL,
                            const std::string& key = "sk-secret") const {
        return test::runProcess(command(arguments, baseURL, key));
    }

    test::TemporaryDirectory directory;
    std::string dictionary = directory.file("dict.sqlite");
    std::string data = directory.file("data");
    std::string settings = directory.file("settings");
    test::LoopbackServer server;
};

TEST_F(ExplainCommandTest, anAnswerIsShownKeptAndNotAskedForAgain) {
    const std::vector<std::string> question{"explain", "running", "--sentence",
                                            "One. He was running late. Two."};
    const auto first = run(question, server.baseURL("success"));
    EXPECT_EQ(first.exitCode, 0) << first.errors;
    EXPECT_THAT(first.output, AllOf(HasSubstr("在这句话里"), HasSubstr("译文：")));
    ASSERT_EQ(server.requests().size(), 1U);
    const auto request = server.requests().front();
    EXPECT_EQ(request.headers.at("authorization"), "Bearer sk-secret");
    EXPECT_THAT(request.body, HasSubstr(R"(Selection: running\nSentence: He was running late.\n)"));

    const auto again = run({"explain", "RUNNING", "--sentence", "He was running late.",
                            "--provider", "none", "--json"},
                           "");
    EXPECT_EQ(again.exitCode, 0) << again.errors;
    EXPECT_EQ(json::parse(again.output).size(), 3U);
    EXPECT_EQ(server.requests().size(), 1U);
}

TEST_F(ExplainCommandTest, alongWithALookupTheEntryComesFirstAndStaysWhenTheModelFails) {
    const auto both =
        run({"lookup", "running", "--sentence", "I am running.", "--explain", "--json"},
            server.baseURL("success"));
    EXPECT_EQ(json::parse(both.output)["lemma"], "run");
    EXPECT_EQ(json::parse(both.output)["explanation"]["examples"].size(), 1U);
    const auto failed = run({"lookup", "run", "--explain"}, server.baseURL("unauthorized"));
    EXPECT_EQ(failed.exitCode, 1);
    EXPECT_THAT(failed.output, HasSubstr("n. 跑"));
    EXPECT_THAT(failed.errors, HasSubstr("请求失败（HTTP 401）"));
    EXPECT_EQ(run({"lookup", "run"}, server.baseURL("success")).exitCode, 0);
    EXPECT_EQ(server.requests().size(), 2U) << "a plain lookup asks nobody";
    const auto several =
        run({"lookup", "mice", "go", "--explain", "--json"}, server.baseURL("too-many"));
    EXPECT_EQ(several.exitCode, 1);
    EXPECT_THAT(several.output, AllOf(HasSubstr(R"("lemma":"mouse")"), HasSubstr(R"("lemma":"go")"),
                                      HasSubstr(R"("explanation":null)")));
}

TEST_F(ExplainCommandTest, withoutOtherWordTheModelOfThePreferencesIsAsked) {
    PreferencesFile preferences(settings + "/Tavik/preferences.json");
    preferences.set(PreferenceKeys::llmProvider, std::string("openAICompatible"));
    preferences.set(PreferenceKeys::llmModel, std::string("chosen"));
    preferences.set(PreferenceKeys::llmBaseURL, server.baseURL("success"));
    std::vector<std::string> plain = command({"explain", "run"}, "", "");
    std::erase_if(plain, [](const std::string& word) { return word.starts_with("TAVIK_LLM_"); });
    plain.insert(plain.end(), {"--model", "named"});
    EXPECT_EQ(test::runProcess(plain).exitCode, 0);
    ASSERT_EQ(server.requests().size(), 1U);
    EXPECT_THAT(server.requests().front().body, HasSubstr(R"("model":"named")"));
    plain.insert(plain.end(), {"--provider", "none"});
    EXPECT_EQ(test::runProcess(plain).exitCode, 0) << "the answer is known";
    EXPECT_EQ(server.requests().size(), 1U);
}

TEST_F(ExplainCommandTest, aKeyIsAskedForUnseenAndLeavesNoTrace) {
    const auto asked = test::runInTerminal(
        command({"explain", "run", "--ask-key"}, server.baseURL("tell-tale"), ""),
        {{"密钥", "sk-tpe\x7F\x7Fyped\n"}});
    ASSERT_EQ(server.requests().size(), 1U);
    EXPECT_EQ(server.requests().front().headers.at("authorization"), "Bearer sk-typed");
    EXPECT_TRUE(asked.isRestored);
    EXPECT_EQ(asked.exitCode, 1) << "the server repeats the key in an error";
    EXPECT_THAT(asked.screen, AllOf(HasSubstr("请求失败"), Not(HasSubstr("sk-ty"))));
    const auto cancelled = test::runInTerminal(
        command({"explain", "run", "--ask-key"}, server.baseURL("success"), "sk-other"),
        {{"密钥", "sk-\x03"}});
    EXPECT_EQ(cancelled.exitCode, 1);
    EXPECT_EQ(server.requests().size(), 1U) << "nothing is sent after Ctrl+C";
    EXPECT_EQ(run({"explain", " "}, server.baseURL("success")).exitCode, 1);
    EXPECT_EQ(server.requests().size(), 1U) << "nor for no word";
    EXPECT_THAT(run({"explain", "run", "--provider", "anthropic"}, "", "").errors,
                HasSubstr("未配置大模型"));
    EXPECT_THAT(run({"explain", "run", "--provider", "oracle"}, "").errors, HasSubstr("oracle"));
}

} // namespace
} // namespace tavik
