#include "Explanation/LLMError.h"

#include "Text/Unicode.h"

namespace tavik {
namespace {

/// As much of a foreign text as a message shows.
std::string excerpt(std::string_view text) {
    constexpr std::size_t shownCharacters = 200;
    return firstCharacters(text, shownCharacters);
}

} // namespace

LLMError::LLMError(Kind kind, const std::string& description, int statusCode)
    : std::runtime_error(description), kind(kind), statusCode(statusCode) {}

LLMError LLMError::http(int statusCode, std::string_view body) {
    return {Kind::http, "请求失败（HTTP " + std::to_string(statusCode) + "）：" + excerpt(body),
            statusCode};
}

LLMError LLMError::badResponse(std::string_view text) {
    return {Kind::badResponse, "无法解析模型返回：" + excerpt(text)};
}

LLMError LLMError::notConfigured() {
    return {Kind::notConfigured, "未配置大模型"};
}

LLMError LLMError::refused() {
    return {Kind::refused, "模型拒绝回答"};
}

} // namespace tavik
