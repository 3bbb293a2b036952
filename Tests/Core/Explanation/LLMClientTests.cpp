#include "Explanation/ExplanationJSON.h"
#include "Explanation/LLMClient.h"
#include "Explanation/LLMError.h"
#include "Support/LoopbackServer.h"
#include "Support/TestCertificates.h"

#include <gmock/gmock.h>
#include <nlohmann/json.hpp>

#include <functional>
#include <stdexcept>
#include <thread>

namespace tavik::test {
namespace {

using nlohmann::json;
using Kind = LLMError::Kind;
using Provider = LLMConfig::Provider;

const std::string key = "sk-0123456789abcdefghijklmnopqrstuvwxyz";
const std::string unreadable = "无法解析模型返回：";
const ContextExplanation explanation{"放弃", "她放弃了。", {{"Don't give up.", "别放弃。"}}};

std::string repeated(int count, const std::string& text) {
    std::string result;
    for (int i = 0; i < count; ++i)
        result += text;
    return result;
}

LLMError failureOf(const std::function<void()>& action) {
    try {
        action();
    } catch (const LLMError& error) {
        return error;
    }
    throw std::logic_error("nothing failed");
}

LLMError failureOf(const LLMClient& client) {
    return failureOf([&] { client.explain("gave up", "She gave up."); });
}

/// Both kinds of service, with the clients for them.
class LLMClientTest : public testing::Test {
protected:
    LLMClient chat(const std::string& scenario) const {
        return {{Provider::openAICompatible, "m", plain.baseURL(scenario), key}, session};
    }

    LLMClient messages(const std::string& scenario) const {
        return {{Provider::anthropic, scenario, "", key}, session};
    }

    void expectFailure(const std::string& scenario, Kind kind, int status,
                       const std::string& message) const {
        for (const LLMClient& client : {chat(scenario), messages(scenario)}) {
            const LLMError error = failureOf(client);
            const auto label = scenario + " of " + std::string(rawValue(client.config().provider));
            EXPECT_EQ(error.kind, kind) << label;
            EXPECT_EQ(error.statusCode, status) << label;
            EXPECT_EQ(error.what(), message) << label;
        }
    }

    std::string certificate(const std::string& name) const {
        authority.write(directory.file("authority"));
        authority.issue("api.anthropic.com", 172800, directory.file(name));
        return directory.file(name);
    }

    TemporaryDirectory directory;
    TestAuthority authority{"Tavik Test Authority"};
    LoopbackServer plain;
    LoopbackServer secure{certificate("server")};
    HTTPSession session{{directory.file("authority"),
                         {"api.anthropic.com:443:127.0.0.1:" + std::to_string(secure.port())}}};
};

TEST_F(LLMClientTest, understandsWhateverAModelPutsRoundItsAnswer) {
    for (const char* scenario :
         {"good", "mislabelled", "prose", "thoughts", "thoughts-with-braces"})
        for (const LLMClient& client : {chat(scenario), messages(scenario)})
            EXPECT_EQ(client.explain("gave up", "She gave up."), explanation)
                << scenario << " of " << rawValue(client.config().provider);
}

TEST_F(LLMClientTest, everyFailureHasItsKindAndMessage) {
    const auto http = [](int status, const std::string& body) {
        return "请求失败（HTTP " + std::to_string(status) + "）：" + body;
    };
    expectFailure("unauthorized", Kind::http, 401, http(401, "<html>" + repeated(194, "e\u0301")));
    expectFailure("too-many", Kind::http, 429,
                  http(429, R"({"error": {"message": "Slow down."}})"));
    expectFailure("overloaded", Kind::http, 500, http(500, ""));
    expectFailure("redirect", Kind::http, 302, http(302, "elsewhere"));
    expectFailure("foreign", Kind::http, 0, http(0, ""));

    const auto expectUnreadable = [&](const std::string& scenario, const std::string& shown) {
        expectFailure(scenario, Kind::badResponse, 0, unreadable + shown);
    };
    expectUnreadable("empty", "");
    expectUnreadable("broken", R"({"choices": [{"message": {"content": "{)");
    expectUnreadable("deep", repeated(200, "["));
    expectUnreadable("latin1", "{\"choices\": \"caf\uFFFD\"}");
    expectUnreadable("surrogate", R"({"choices": "\ud800", "content": "\ud800"})");
    expectUnreadable("huge", "{" + repeated(199, " "));
    expectUnreadable("bomb", "{" + repeated(199, " "));
    expectUnreadable("chatty", "I am not sure, sorry.");
    expectUnreadable("speechless", "");
    expectUnreadable("deep-text", repeated(40, R"({"a":)"));
    expectUnreadable("surrogate-text", R"({"meaning_in_context": "\ud800"})");
    EXPECT_THAT(plain.requests(), testing::SizeIs(16)) << "a redirect is not followed";

    EXPECT_STREQ(failureOf(messages("refusal")).what(), "模型拒绝回答");
    EXPECT_EQ(failureOf(messages("refusal")).kind, Kind::refused);
    EXPECT_EQ(failureOf(chat("refusal")).kind, Kind::badResponse);
}

TEST_F(LLMClientTest, theKeyIsInNoMessageEvenWhenTheServerRepeatsIt) {
    expectFailure("tell-tale", Kind::http, 401,
                  "请求失败（HTTP 401）：" + repeated(190, "x") + "***");
    expectFailure("tell-tale-text", Kind::badResponse, 0, unreadable + "Your key is ***.");
}

TEST_F(LLMClientTest, aKeyPastedWithBlanksIsSentAndStruckOutWithoutThem) {
    LLMConfig config = chat("tell-tale").config();
    config.apiKey = " sk-pasted/1 \n";
    const auto error = failureOf(LLMClient(config, session));
    EXPECT_EQ(plain.requests().back().headers.at("authorization"), "Bearer sk-pasted/1");
    EXPECT_THAT(error.what(), testing::Not(testing::HasSubstr("sk-")));
}

TEST_F(LLMClientTest, aTextOfVeryManyValuesIsNotReadToItsEnd) {
    EXPECT_THROW(LLMClient::parseExplanation(R"({"a":[)" + repeated(200000, "1,") + "1]}"),
                 LLMError);
    EXPECT_NO_THROW(LLMClient::parseExplanation(R"({"a":[)" + repeated(2000, "1,") + "1]}"));
}

TEST_F(LLMClientTest, asksOverChatCompletions) {
    LLMConfig config = chat("good").config();
    LLMClient(config, session).explain("gave up", "She gave up.");
    config.baseURL += '/';
    config.apiKey.clear();
    LLMClient(config, session).explain("\xFF\u0001", std::nullopt);

    const auto requests = plain.requests();
    ASSERT_EQ(requests.size(), 2);
    for (const ReceivedRequest& request : requests) {
        EXPECT_EQ(request.method + ' ' + request.path, "POST /good/v1/chat/completions");
        EXPECT_EQ(request.headers.at("content-type"), "application/json");
    }
    EXPECT_EQ(requests[0].headers.at("authorization"), "Bearer " + key);
    EXPECT_EQ(requests[1].headers.count("authorization"), 0);

    json body = json::parse(requests[0].body);
    const std::string system = body.at("messages").at(0).at("content");
    EXPECT_THAT(system, testing::StartsWith("You help a native Chinese speaker read English. "));
    EXPECT_THAT(system, testing::EndsWith("\nReply with only a JSON object with keys "
                                          "meaning_in_context, translation, examples (array of "
                                          "{en, zh})."));
    body["messages"][0].erase("content");
    EXPECT_EQ(body, json::parse(R"({"model": "m", "temperature": 0.3, "messages": [
        {"role": "system"},
        {"role": "user", "content": "Selection: gave up\nSentence: She gave up.\n"}]})"));
    EXPECT_EQ(json::parse(requests[1].body).at("messages").at(1).at("content"),
              "Selection: \uFFFD\u0001\nSentence: (not available)\n");
}

TEST_F(LLMClientTest, asksOverMessages) {
    messages("").explain("gave up", "She gave up.");
    const auto requests = secure.requests();
    ASSERT_EQ(requests.size(), 1);
    EXPECT_EQ(requests[0].method + ' ' + requests[0].path, "POST /v1/messages");
    for (const auto& [name, value] :
         std::map<std::string, std::string>{{"content-type", "application/json"},
                                            {"x-api-key", key},
                                            {"anthropic-version", "2023-06-01"},
                                            {"anthropic-beta", "server-side-fallback-2026-07-01"}})
        EXPECT_EQ(requests[0].headers.at(name), value);
    EXPECT_EQ(requests[0].headers.count("authorization"), 0);

    json body = json::parse(requests[0].body);
    EXPECT_THAT(body.at("system").get<std::string>(),
                testing::EndsWith("summarise its meaning in \"meaning_in_context\"."));
    body.erase("system");
    EXPECT_EQ(body, json::parse(R"({"model": "claude-opus-5-5", "max_tokens": 4096,
        "fallbacks": "default",
        "messages": [
            {"role": "user", "content": "Selection: gave up\nSentence: She gave up.\n"}],
        "output_config": {"effort": "low", "format": {"type": "json_schema", "schema": {
            "type": "object",
            "properties": {
                "meaning_in_context":
                    {"type": "string", "description": "这个词/短语在本句中的意思（中文，一句话）"},
                "translation":
                    {"type": "string", "description": "整句（或所选内容）的中文翻译"},
                "examples": {"type": "array", "items": {
                    "type": "object",
                    "properties": {"en": {"type": "string"}, "zh": {"type": "string"}},
                    "required": ["en", "zh"],
                    "additionalProperties": false}}},
            "required": ["meaning_in_context", "translation", "examples"],
            "additionalProperties": false}}}})"));
}

TEST_F(LLMClientTest, passesOnThatThereIsNoAnswer) {
    const auto kindOf = [](const LLMClient& client, const std::stop_token& stop) {
        try {
            client.explain("run", std::nullopt, stop);
        } catch (const TransportError& error) {
            return error.kind;
        }
        throw std::logic_error("there is an answer");
    };
    EXPECT_EQ(kindOf(chat("cut"), {}), TransportError::Kind::interrupted);
    std::stop_source stop;
    const std::jthread canceller([&] {
        std::this_thread::sleep_for(std::chrono::milliseconds(200));
        stop.request_stop();
    });
    EXPECT_EQ(kindOf(messages("drip"), stop.get_token()), TransportError::Kind::cancelled);
}

LLMClient offline(LLMConfig config) {
    static const HTTPSession session;
    return {std::move(config), session};
}

TEST(LLMClient, asksNobodyWithoutACompleteConfiguration) {
    const auto expectRefusal = [](const LLMConfig& config) {
        const LLMError error = failureOf([&] { offline(config).makeRequest("run", std::nullopt); });
        EXPECT_EQ(error.kind, Kind::notConfigured) << config.baseURL;
        EXPECT_STREQ(error.what(), "未配置大模型");
    };
    expectRefusal({Provider::none, "m", "https://example.com/v1", "sk"});
    for (const char* url : {"", "/v1", "example.com/v1", "localhost:11434/v1",
                            "ftp://example.com/v1", "file:///v1", "https:///v1", "http://[::1/v1",
                            "https://", "https://example.com/v1\n", "http://my host/v1"})
        expectRefusal({Provider::openAICompatible, "m", url, "sk"});
    for (const Provider provider : {Provider::anthropic, Provider::openAICompatible})
        expectRefusal({provider, "m", "https://example.com/v1", "sk\r\nX-Injected: 1"});
}

TEST(LLMClient, takesOneSlashFromTheEndOfTheBaseURL) {
    const auto endpoint = [](const char* baseURL) {
        return offline({Provider::openAICompatible, "m", baseURL, ""}).makeRequest("run", "").url;
    };
    EXPECT_EQ(endpoint("http://[::1]:11434/v1"), "http://[::1]:11434/v1/chat/completions");
    EXPECT_EQ(endpoint("HTTPS://Example.com/v1/"), "HTTPS://Example.com/v1/chat/completions");
    EXPECT_EQ(endpoint("https://example.com//"), "https://example.com//chat/completions");
}

TEST(LLMClient, readsAReplyOfTheExpectedShapeOnly) {
    const LLMClient chat = offline({Provider::openAICompatible, "m", "http://h", ""});
    for (const char* body :
         {"[]", "null", "{}", R"({"choices":{"0":1}})", R"({"choices":[]})", R"({"choices":["a"]})",
          R"({"choices":[{"message":["content"]}]})", R"({"choices":[{"message":{"content":7}}]})"})
        EXPECT_EQ(failureOf([&] { chat.extractText(body); }).what(), unreadable + body);

    const LLMClient messages = offline({Provider::anthropic, "", "", "sk"});
    for (const char* body : {"[]", "{}", R"({"content":"text"})", R"({"content":{"type":"text"}})"})
        EXPECT_EQ(failureOf([&] { messages.extractText(body); }).what(), unreadable + body);
    EXPECT_EQ(messages.extractText(R"({"stop_reason":7,"content":[1,null,{"type":"text","text":"a"},
        {"type":"text"},{"type":7,"text":"b"},{"type":"text","text":["c"]},
        {"type":"tool_use","text":"d"},{"text":"e"},{"type":"text","text":"f"}]})"),
              "af");
}

TEST(LLMClient, keepsWhatIsGoodOfAnExplanation) {
    const ContextExplanation kept = LLMClient::parseExplanation(
        R"({"meaning_in_context":7,"translation":"好","examples":[{"en":"a"},{"en":"b","zh":null},
            "c",{"en":"d","zh":"丁","more":1},[],{"en":"","zh":""}],"more":{}})");
    EXPECT_EQ(kept, (ContextExplanation{"", "好", {{"d", "丁"}, {"", ""}}}));
    EXPECT_EQ(LLMClient::parseExplanation(R"({"examples":{"en":"a","zh":"b"}})"),
              ContextExplanation());
    for (const char* text :
         {"", "{", "}{", "[1]", "{]}", "{}{}", R"({"translation":"\ud83d"})", "</think>} {"})
        EXPECT_EQ(failureOf([&] { LLMClient::parseExplanation(text); }).what(), unreadable + text);
}

TEST(LLMConfig, isUsableWhenThereIsEnoughToAsk) {
    EXPECT_FALSE(LLMConfig({Provider::none, "m", "https://example.com", "sk"}).isUsable());
    EXPECT_TRUE(LLMConfig({Provider::anthropic, "", "", "sk"}).isUsable());
    EXPECT_FALSE(LLMConfig({Provider::anthropic, "m", "https://example.com", ""}).isUsable());
    EXPECT_TRUE(LLMConfig({Provider::openAICompatible, "m", "http://localhost", ""}).isUsable());
    EXPECT_FALSE(LLMConfig({Provider::openAICompatible, "", "http://localhost", "sk"}).isUsable());
    EXPECT_FALSE(LLMConfig({Provider::openAICompatible, "m", "", "sk"}).isUsable());
}

TEST(LLMConfig, comesBackFromJSON) {
    for (const Provider provider : LLMConfig::allProviders) {
        const LLMConfig config{provider, "模型", "http://localhost/v1", "sk"};
        EXPECT_EQ(json::parse(json(config).dump()).get<LLMConfig>(), config) << label(provider);
    }
    const json good = LLMConfig{Provider::anthropic, "m", "", "sk"};
    EXPECT_EQ(good,
              json::parse(R"({"provider":"anthropic","model":"m","baseURL":"","apiKey":"sk"})"));
    for (const char* damage : {R"({"provider":"Anthropic"})", R"({"provider":1})",
                               R"({"model":null})", R"({"apiKey":{}})"}) {
        json damaged = good;
        damaged.update(json::parse(damage));
        EXPECT_THROW(damaged.get<LLMConfig>(), json::exception) << damage;
    }
    EXPECT_THROW(json::parse(R"({"provider":"none"})").get<LLMConfig>(), json::exception);
}

TEST(ContextExplanation, comesBackFromJSON) {
    EXPECT_EQ(json::parse(json(explanation).dump()).get<ContextExplanation>(), explanation);
    json incomplete = explanation;
    incomplete.erase("examples");
    EXPECT_THROW(incomplete.get<ContextExplanation>(), json::exception);
}

} // namespace
} // namespace tavik::test
