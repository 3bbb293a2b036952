#include "Dictionary/DefinitionText.h"

#include <algorithm>

namespace tavik {
namespace {

constexpr std::size_t longestPartOfSpeech = 8;
constexpr std::string_view smallLetters = "abcdefghijklmnopqrstuvwxyz";
constexpr std::string_view joint = " & ";

/// The length of "vt." at the beginning; 0 when there is none.
std::size_t abbreviationLength(std::string_view line) {
    const std::size_t letters = line.find_first_not_of(smallLetters);
    const bool isOne = letters != std::string_view::npos && letters > 0
                       && letters <= longestPartOfSpeech && line[letters] == '.';
    return isOne ? letters + 1 : 0;
}

/// The length of "vt." or "a. & adv." at the beginning; 0 when there is none.
std::size_t partOfSpeechLength(std::string_view line) {
    const std::size_t first = abbreviationLength(line);
    if (first == 0 || !line.substr(first).starts_with(joint)) return first;
    const std::size_t second = abbreviationLength(line.substr(first + joint.size()));
    return second == 0 ? first : first + joint.size() + second;
}

std::size_t fieldLength(std::string_view line) {
    if (!line.starts_with('[')) return 0;
    const std::size_t end = line.find(']');
    return end == std::string_view::npos ? 0 : end + 1;
}

} // namespace

DefinitionText definitionText(std::string_view line) {
    const std::size_t length = std::max(partOfSpeechLength(line), fieldLength(line));
    std::string_view sense = line.substr(length);
    sense.remove_prefix(std::min(sense.find_first_not_of(' '), sense.size()));
    if (length == 0 || sense.empty()) return {"", std::string(line)};
    return {std::string(line.substr(0, length)), std::string(sense)};
}

} // namespace tavik
