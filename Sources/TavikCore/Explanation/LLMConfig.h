#pragma once

#include <nlohmann/json_fwd.hpp>

#include <array>
#include <optional>
#include <string>
#include <string_view>

namespace tavik {

/// Which language model the user has chosen, if any.
struct LLMConfig {
    enum class Provider { none, anthropic, openAICompatible };

    static constexpr std::array allProviders{Provider::none, Provider::anthropic,
                                             Provider::openAICompatible};
    static constexpr const char* defaultOpenAIBaseURL = "https://api.openai.com/v1";
    static constexpr const char* defaultAnthropicModel = "claude-opus-5-5";

    Provider provider = Provider::none;
    /// Empty for Anthropic's default.
    std::string model;
    /// Of an OpenAI-compatible service, such as `defaultOpenAIBaseURL`; not used for Anthropic.
    std::string baseURL;
    /// Secret; may be empty for a server of one's own. Never to be logged or shown.
    std::string apiKey;

    /// Whether there is enough to ask the model.
    bool isUsable() const;

    bool operator==(const LLMConfig&) const = default;
};

/// The text under which preferences keep the provider.
std::string_view rawValue(LLMConfig::Provider provider);
std::optional<LLMConfig::Provider> providerFromRawValue(std::string_view text);

/// The provider's name for people.
std::string_view label(LLMConfig::Provider provider);

/// A configuration as a JSON object; each key is the field's name. Reading throws
/// `nlohmann::json::exception` when a key is missing, of another type, or no provider.
void to_json(nlohmann::json& json, const LLMConfig& config);
void from_json(const nlohmann::json& json, LLMConfig& config);

} // namespace tavik
