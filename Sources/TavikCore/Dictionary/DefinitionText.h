#pragma once

#include <string>
#include <string_view>
#include <utility>

namespace tavik {

/// A sense of the dictionary, with what stands before it set apart: a part of speech such as "n."
/// or a field such as "[计]"; empty where there is neither.
struct DefinitionText {
    std::string label;
    std::string sense;

    bool operator==(const DefinitionText&) const = default;
};

DefinitionText definitionText(std::string_view line);

} // namespace tavik
