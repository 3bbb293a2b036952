#pragma once

#include <stdexcept>
#include <string>
#include <string_view>

namespace tavik {

/// Why a language model gave no explanation; `what()` is a Chinese sentence for the user.
class LLMError : public std::runtime_error {
public:
    enum class Kind {
        /// The service answered with an error; code 0 when the answer was no HTTP.
        http,
        /// The answer could not be understood.
        badResponse,
        notConfigured,
        /// The model would not answer.
        refused,
    };

    static LLMError http(int statusCode, std::string_view body);
    static LLMError badResponse(std::string_view text);
    static LLMError notConfigured();
    static LLMError refused();

    Kind kind;
    /// For `http` only.
    int statusCode = 0;

private:
    LLMError(Kind kind, const std::string& description, int statusCode = 0);
};

} // namespace tavik
