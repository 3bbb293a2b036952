#pragma once

#include "Explanation/ExplanationRecords.h"
#include "Explanation/HTTPSession.h"
#include "Explanation/LLMConfig.h"

#include <nlohmann/json_fwd.hpp>

#include <optional>
#include <stop_token>
#include <string>
#include <string_view>

namespace tavik {

/// Asks the user's language model what a word means in its sentence, over the protocol of OpenAI's
/// chat completions or Anthropic's messages.
///
/// It keeps nothing between calls; any thread may call, several at once. The API key appears in no
/// message of it, even when the server repeats it. The session must outlive it.
class LLMClient {
public:
    LLMClient(LLMConfig config, const HTTPSession& session);

    const LLMConfig& config() const { return settings; }

    /// Waits for the model's answer, at most a minute. Throws `LLMError`, or `TransportError` when
    /// there is no answer; at once when `stop` is requested.
    ContextExplanation explain(const std::string& selection,
                               const std::optional<std::string>& sentence,
                               const std::stop_token& stop = {}) const;

    /// The steps of `explain`, each of which throws `LLMError`.

    HTTPRequest makeRequest(const std::string& selection,
                            const std::optional<std::string>& sentence) const;

    /// The text that the model wrote, from the body of the service's answer.
    std::string extractText(std::string_view data) const;

    /// The explanation in the model's text: the JSON object from its first "{" to its last "}". A
    /// model that thinks aloud may have braces before the end of its thoughts; they are passed over
    /// when there is no other way to read the text.
    static ContextExplanation parseExplanation(std::string_view text);

    static std::string userPrompt(const std::string& selection,
                                  const std::optional<std::string>& sentence);

    /// The JSON schema of the answer.
    static const nlohmann::json& schema();

private:
    std::string withoutKey(std::string_view text) const;

    LLMConfig settings;
    const HTTPSession& session;
};

} // namespace tavik
