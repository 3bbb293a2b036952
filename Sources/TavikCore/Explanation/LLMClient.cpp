#include "Explanation/LLMClient.h"

#include "Base/BoundedJSON.h"
#include "Explanation/LLMError.h"
#include "Text/CharacterClasses.h"
#include "Text/URL.h"
#include "Text/Unicode.h"

#include <nlohmann/json.hpp>

#include <algorithm>
#include <utility>

namespace tavik {
namespace {

using nlohmann::json;
using Provider = LLMConfig::Provider;

constexpr const char* anthropicEndpoint = "https://api.anthropic.com/v1/messages";
constexpr int anthropicMaxTokens = 4096;
constexpr double openAITemperature = 0.3;
constexpr int firstSuccess = 200;
constexpr int lastSuccess = 299;

constexpr const char* systemPrompt =
    "You help a native Chinese speaker read English. Given a selected word or phrase and the "
    "sentence it appeared in, explain what the selection means in that specific sentence. Write "
    "explanations in Simplified Chinese, keep them short (one sentence), and give two natural, "
    "everyday English example sentences that use the selection with the same meaning, each with a "
    "Chinese translation. If the selection is itself a long phrase or sentence, put its Chinese "
    "translation in \"translation\" and summarise its meaning in \"meaning_in_context\".";

constexpr const char* jsonOnlyPrompt =
    "\nReply with only a JSON object with keys meaning_in_context, translation, examples (array of "
    "{en, zh}).";

json anthropicBody(const LLMConfig& config, const std::string& prompt) {
    return {{"model", config.model.empty() ? LLMConfig::defaultAnthropicModel : config.model},
            {"max_tokens", anthropicMaxTokens},
            {"fallbacks", "default"},
            {"system", systemPrompt},
            {"messages", json::array({{{"role", "user"}, {"content", prompt}}})},
            {"output_config",
             {{"effort", "low"},
              {"format", {{"type", "json_schema"}, {"schema", LLMClient::schema()}}}}}};
}

json openAIBody(const LLMConfig& config, const std::string& prompt) {
    return {{"model", config.model},
            {"messages", json::array({{{"role", "system"},
                                       {"content", std::string(systemPrompt) + jsonOnlyPrompt}},
                                      {{"role", "user"}, {"content", prompt}}})},
            {"temperature", openAITemperature}};
}

bool isControl(char byte) {
    return static_cast<unsigned char>(byte) < ' ' || byte == '\x7F';
}

/// The address of chat completions below `baseURL`; nothing when that is no address of the web.
std::optional<std::string> openAIEndpoint(std::string baseURL) {
    const auto url = URL::parse(baseURL);
    const bool isWeb = url && (url->scheme == "https" || url->scheme == "http");
    if (!isWeb || url->host.empty()) return std::nullopt;
    // `parse` takes what browsers take, but a request cannot hold these.
    if (baseURL.find(' ') != std::string::npos || std::ranges::any_of(baseURL, isControl))
        return std::nullopt;
    if (baseURL.ends_with('/')) baseURL.pop_back();
    return baseURL + "/chat/completions";
}

/// Whether `key` may stand in a header: a line break would end it and begin another.
bool isHeaderValue(std::string_view key) {
    return std::ranges::none_of(key, isControl);
}

HTTPRequest jsonRequest(std::string url, const json& body) {
    HTTPRequest request;
    request.method = "POST";
    request.url = std::move(url);
    request.headers = {{"content-type", "application/json"}};
    // A selection may hold anything; what is no text in it is sent as U+FFFD.
    request.body = body.dump(-1, ' ', false, json::error_handler_t::replace);
    return request;
}

/// The value at `key`, or nullptr when `value` is no object or has none.
const json* member(const json* value, const char* key) {
    if (value == nullptr || !value->is_object()) return nullptr;
    const auto found = value->find(key);
    return found == value->end() ? nullptr : &*found;
}

const json* firstElement(const json* value) {
    return value != nullptr && value->is_array() && !value->empty() ? &value->front() : nullptr;
}

/// The string at `key`, if there is one.
const std::string* text(const json* value, const char* key) {
    const json* const found = member(value, key);
    return found == nullptr ? nullptr : found->get_ptr<const std::string*>();
}

std::string textOrEmpty(const json& value, const char* key) {
    const std::string* const found = text(&value, key);
    return found == nullptr ? std::string() : *found;
}

std::string openAIText(const json& body, std::string_view data) {
    const json* const choice = firstElement(member(&body, "choices"));
    const std::string* const content = text(member(choice, "message"), "content");
    if (content == nullptr) throw LLMError::badResponse(data);
    return *content;
}

std::string anthropicText(const json& body, std::string_view data) {
    const std::string* const stopReason = text(&body, "stop_reason");
    if (stopReason != nullptr && *stopReason == "refusal") throw LLMError::refused();
    const json* const content = member(&body, "content");
    if (content == nullptr || !content->is_array()) throw LLMError::badResponse(data);
    std::string all;
    for (const json& block : *content) {
        const std::string* const type = text(&block, "type");
        if (type != nullptr && *type == "text") all += textOrEmpty(block, "text");
    }
    return all;
}

std::vector<ExampleSentence> examples(const json& object) {
    std::vector<ExampleSentence> result;
    const json* const items = member(&object, "examples");
    if (items == nullptr || !items->is_array()) return result;
    for (const json& item : *items) {
        const std::string* const en = text(&item, "en");
        const std::string* const zh = text(&item, "zh");
        if (en != nullptr && zh != nullptr) result.push_back({*en, *zh});
    }
    return result;
}

/// The JSON object from the first "{" to the last "}".
std::optional<json> objectIn(std::string_view text) {
    const std::size_t first = text.find('{');
    const std::size_t last = text.rfind('}');
    if (first == std::string_view::npos || last == std::string_view::npos || last < first)
        return std::nullopt;
    auto object = parseBoundedJSON(text.substr(first, last - first + 1));
    if (!object || !object->is_object()) return std::nullopt;
    return object;
}

/// What stands behind a model's thoughts.
std::string_view afterThoughts(std::string_view text) {
    constexpr std::string_view end = "</think>";
    const std::size_t found = text.rfind(end);
    return found == std::string_view::npos ? std::string_view() : text.substr(found + end.size());
}

json makeSchema() {
    const json string{{"type", "string"}};
    const auto object = [](const json& properties, const json& required) {
        return json{{"type", "object"},
                    {"properties", properties},
                    {"required", required},
                    {"additionalProperties", false}};
    };
    const json example = object({{"en", string}, {"zh", string}}, {"en", "zh"});
    return object(
        {{"meaning_in_context",
          {{"type", "string"}, {"description", "这个词/短语在本句中的意思（中文，一句话）"}}},
         {"translation", {{"type", "string"}, {"description", "整句（或所选内容）的中文翻译"}}},
         {"examples", {{"type", "array"}, {"items", example}}}},
        {"meaning_in_context", "translation", "examples"});
}

} // namespace

LLMClient::LLMClient(LLMConfig config, const HTTPSession& session)
    : settings(std::move(config)), session(session) {
    // A key is often pasted with a line break, and blanks are lost on the way to the server.
    settings.apiKey = std::string(trimmed(settings.apiKey, isWhiteSpace));
}

const json& LLMClient::schema() {
    static const json schema = makeSchema();
    return schema;
}

std::string LLMClient::userPrompt(const std::string& selection,
                                  const std::optional<std::string>& sentence) {
    const bool hasSentence = sentence && !sentence->empty();
    return "Selection: " + selection
           + "\nSentence: " + (hasSentence ? *sentence : "(not available)") + '\n';
}

HTTPRequest LLMClient::makeRequest(const std::string& selection,
                                   const std::optional<std::string>& sentence) const {
    const std::string prompt = userPrompt(selection, sentence);
    if (!isHeaderValue(settings.apiKey)) throw LLMError::notConfigured();
    switch (settings.provider) {
    case Provider::none:
        throw LLMError::notConfigured();
    case Provider::anthropic: {
        HTTPRequest request = jsonRequest(anthropicEndpoint, anthropicBody(settings, prompt));
        request.headers.emplace_back("x-api-key", settings.apiKey);
        request.headers.emplace_back("anthropic-version", "2023-06-01");
        request.headers.emplace_back("anthropic-beta", "server-side-fallback-2026-07-01");
        return request;
    }
    case Provider::openAICompatible:
        break;
    }
    const auto endpoint = openAIEndpoint(settings.baseURL);
    if (!endpoint) throw LLMError::notConfigured();
    HTTPRequest request = jsonRequest(*endpoint, openAIBody(settings, prompt));
    if (!settings.apiKey.empty())
        request.headers.emplace_back("Authorization", "Bearer " + settings.apiKey);
    return request;
}

ContextExplanation LLMClient::explain(const std::string& selection,
                                      const std::optional<std::string>& sentence,
                                      const std::stop_token& stop) const {
    const HTTPResponse response = session.send(makeRequest(selection, sentence), stop);
    if (stop.stop_requested()) throw TransportError(TransportError::Kind::cancelled);
    if (response.status < firstSuccess || response.status > lastSuccess)
        throw LLMError::http(response.status, withoutKey(response.body));
    if (response.isCutOff) throw LLMError::badResponse(withoutKey(response.body));
    // What is read at the moment, from outside in.
    std::string text = response.body;
    try {
        text = extractText(text);
        return parseExplanation(text);
    } catch (const LLMError& error) {
        if (error.kind != LLMError::Kind::badResponse) throw;
        throw LLMError::badResponse(withoutKey(text));
    }
}

std::string LLMClient::withoutKey(std::string_view text) const {
    if (settings.apiKey.empty()) return std::string(text);
    // As it is, and as JSON may write it.
    const std::string escaped = replacingAll(settings.apiKey, "/", "\\/");
    return replacingAll(replacingAll(text, settings.apiKey, "***"), escaped, "***");
}

std::string LLMClient::extractText(std::string_view data) const {
    const auto body = parseBoundedJSON(data);
    if (!body || !body->is_object()) throw LLMError::badResponse(data);
    return settings.provider == Provider::anthropic ? anthropicText(*body, data)
                                                    : openAIText(*body, data);
}

ContextExplanation LLMClient::parseExplanation(std::string_view text) {
    auto object = objectIn(text);
    if (!object) object = objectIn(afterThoughts(text));
    if (!object) throw LLMError::badResponse(text);
    return {textOrEmpty(*object, "meaning_in_context"), textOrEmpty(*object, "translation"),
            examples(*object)};
}

} // namespace tavik
