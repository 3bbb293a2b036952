#include "Explanation/LLMConfig.h"

#include <nlohmann/json.hpp>

#include <algorithm>

namespace tavik {
namespace {

using Provider = LLMConfig::Provider;

struct ProviderTexts {
    Provider provider;
    std::string_view rawValue;
    std::string_view label;
};

constexpr std::array providerTexts{
    ProviderTexts{Provider::none, "none", "不使用"},
    ProviderTexts{Provider::anthropic, "anthropic", "Anthropic Claude"},
    ProviderTexts{Provider::openAICompatible, "openAICompatible",
                  "OpenAI 兼容（OpenAI / DeepSeek / Ollama…）"},
};

const ProviderTexts& texts(Provider provider) {
    return providerTexts.at(static_cast<std::size_t>(provider));
}

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
    return texts(provider).rawValue;
}

std::optional<Provider> providerFromRawValue(std::string_view text) {
    const auto* const found = std::ranges::find(providerTexts, text, &ProviderTexts::rawValue);
    if (found == providerTexts.end()) return std::nullopt;
    return found->provider;
}

std::string_view label(Provider provider) {
    return texts(provider).label;
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
