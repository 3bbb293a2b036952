#pragma once

#include <nlohmann/json_fwd.hpp>

#include <optional>
#include <string_view>

namespace tavik {

/// Parses a JSON text from outside. Nothing when it is not valid, or nested deeper than 64 levels:
/// copying or printing a very deep value would overflow the stack.
std::optional<nlohmann::json> parseBoundedJSON(std::string_view text);

} // namespace tavik
