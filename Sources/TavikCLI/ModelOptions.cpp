#include "TavikCLI/ModelOptions.h"

#include "Base/DataDirectory.h"
#include "Base/PreferencesFile.h"
#include "TavikTerminal/SecretPrompt.h"

#include <stdexcept>
#include <utility>

namespace tavik {
namespace {

using Provider = LLMConfig::Provider;

std::string orEnvironment(const std::string& given, const char* variable) {
    return given.empty() ? environmentVariable(variable).value_or("") : given;
}

void replaceIfNamed(std::string& value, const std::string& named) {
    if (!named.empty()) value = named;
}

/// What the user has chosen in the application.
LLMConfig preferredModel() {
    const Preferences preferences = PreferencesFile(preferencesPath(environmentVariable)).values();
    const auto text = [&](const char* key) { return preferences.text(key).value_or(""); };
    LLMConfig config;
    config.provider =
        providerFromRawValue(text(PreferenceKeys::llmProvider)).value_or(Provider::none);
    config.model = text(PreferenceKeys::llmModel);
    config.baseURL = text(PreferenceKeys::llmBaseURL);
    return config;
}

Provider providerNamed(const std::string& name) {
    if (name == "openai") return Provider::openAICompatible;
    const auto provider = providerFromRawValue(name);
    if (!provider)
        throw std::runtime_error("不认识的大模型服务“" + name
                                 + "”，可以是 anthropic、openai 或 none");
    return *provider;
}

} // namespace

void ModelOptions::addTo(CLI::App& command) {
    command.add_option("--provider", provider, "大模型服务：anthropic、openai（及兼容的）或 none")
        ->option_text("名称");
    command.add_option("--model", model, "模型的名称")->option_text("名称");
    command.add_option("--base-url", baseURL, "OpenAI 兼容服务的地址，默认是 OpenAI 的")
        ->option_text("地址");
    command.add_flag("--ask-key", asksKey, "在终端里询问 API 密钥");
}

LLMConfig ModelOptions::config() const {
    LLMConfig config;
    const std::string name = orEnvironment(provider, "TAVIK_LLM_PROVIDER");
    if (name.empty())
        config = preferredModel();
    else
        config.provider = providerNamed(name);
    replaceIfNamed(config.model, orEnvironment(model, "TAVIK_LLM_MODEL"));
    replaceIfNamed(config.baseURL, orEnvironment(baseURL, "TAVIK_LLM_BASE_URL"));
    if (config.provider == Provider::openAICompatible && config.baseURL.empty())
        config.baseURL = LLMConfig::defaultOpenAIBaseURL;
    return config;
}

std::string ModelOptions::apiKey() const {
    std::string known = environmentVariable("TAVIK_LLM_API_KEY").value_or("");
    const bool isNeeded = config().provider == Provider::anthropic;
    const bool mustAsk = asksKey || (isNeeded && known.empty());
    if (!mustAsk || !canAsk()) return known;
    auto answer = askSecret("API 密钥（输入时不显示）：");
    if (!answer) throw std::runtime_error("没有输入 API 密钥，已取消");
    return std::move(*answer);
}

const char* ModelOptions::help() {
    return "没有给出的选项取自环境变量 TAVIK_LLM_PROVIDER、TAVIK_LLM_MODEL 和 "
           "TAVIK_LLM_BASE_URL，再没有就照 Tavik 的设置。\n"
           "API 密钥取自 TAVIK_LLM_API_KEY，或者在终端里询问。问过的不会再问，直接显示记下的答案。";
}

} // namespace tavik
