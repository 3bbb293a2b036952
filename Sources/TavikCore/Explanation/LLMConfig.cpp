#include "Explanation/LLMConfig.h"

#include "Base/EnumTexts.h"

#include <nlohmann/json.hpp>

namespace tavik {
namespace {

using Provider = LLMConfig::Provider;

constexpr EnumTable<Provider, 3> providerTexts{
    {{Provider::none, "none", "不使用"},
     {Provider::anthropic, "anthropic", "Anthropic Claude"},
     {Provider::openAICompatible, "openAICompatible",
      "OpenAI 兼容（OpenAI / DeepSeek / Ollama…）"}}};

} // namespace

bool LLMConfig::isUsable() const {
    switch (provider) {
    case Provider::none:
        return false;
    case Provider::anthropic:
        return !apiKey.empty();
    case Provider::openAICompatible:
        break;
    }
    return !baseURL.empty() && !model.empty();
}

std::string_view rawValue(Provider provider) {
    return textsOf(providerTexts, provider).rawValue;
}

std::optional<Provider> providerFromRawValue(std::string_view text) {
    return caseWithRawValue(providerTexts, text);
}

std::string_view label(Provider provider) {
    return textsOf(providerTexts, provider).label;
}

void to_json(nlohmann::json& json, const LLMConfig& config) {
    json = {{"provider", rawValue(config.provider)},
            {"model", config.model},
            {"baseURL", config.baseURL},
            {"apiKey", config.apiKey}};
}

void from_json(const nlohmann::json& json, LLMConfig& config) {
    const auto provider = providerFromRawValue(json.at("provider").get<std::string>());
    if (!provider) throw nlohmann::json::other_error::create(501, "no such provider", &json);
    config.provider = *provider;
    json.at("model").get_to(config.model);
    json.at("baseURL").get_to(config.baseURL);
    json.at("apiKey").get_to(config.apiKey);
}

} // namespace tavik
