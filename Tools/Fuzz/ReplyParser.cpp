#include "Check.h"
#include "Dictionary/DictionaryJSON.h"
#include "Explanation/ExplanationJSON.h"
#include "Explanation/LLMClient.h"
#include "Explanation/LLMError.h"
#include "Text/Unicode.h"

#include <nlohmann/json.hpp>

#include <array>
#include <optional>

namespace {

using namespace tavik;
using fuzz::check;
using nlohmann::json;
using Provider = LLMConfig::Provider;

/// What `read` gives, or nothing when it throws the error that it may throw.
template<typename Read>
auto attempt(const Read& read) -> std::optional<decltype(read())> {
    try {
        return read();
    } catch (const LLMError& error) {
        check(error.kind == LLMError::Kind::badResponse || error.kind == LLMError::Kind::refused,
              "a reply is not understood, or it is a refusal");
        check(isValidUTF8(error.what()), "messages are text");
    }
    return std::nullopt;
}

std::optional<ContextExplanation> parse(std::string_view text) {
    return attempt([text] { return LLMClient::parseExplanation(text); });
}

void checkExplanation(std::string_view text) {
    const auto explanation = parse(text);
    check(parse("Sure: " + std::string(text) + " I hope it helps.") == explanation,
          "prose round the answer does not count");
    if (!explanation) return;
    const json stored = *explanation;
    check(json::parse(stored.dump()).get<ContextExplanation>() == *explanation,
          "an explanation can be stored");
    const json answer{{"meaning_in_context", explanation->meaningInContext},
                      {"translation", explanation->translation},
                      {"examples", explanation->examples}};
    check(parse(answer.dump()) == explanation, "an explanation can be written as a model would");
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const unsigned char* data, std::size_t size) {
    static const HTTPSession session;
    static const std::array clients{
        LLMClient({Provider::openAICompatible, "m", "http://localhost/v1", ""}, session),
        LLMClient({Provider::anthropic, "", "", "sk"}, session)};
    const std::string_view input = fuzz::text(data, size);
    for (const LLMClient& client : clients)
        if (const auto text = attempt([&] { return client.extractText(input); }))
            checkExplanation(*text);
    checkExplanation(input);
    return 0;
}
