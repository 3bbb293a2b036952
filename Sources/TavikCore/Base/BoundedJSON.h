#pragma once

#include <nlohmann/json_fwd.hpp>

#include <optional>
#include <string_view>

namespace tavik {

/// Parses a JSON text from outside. Nothing when it is not valid, is nested deeper than 64 levels,
/// or holds more than 100,000 values: copying or printing a very deep value would overflow the
/// stack, and many small ones take a second and a great deal of memory.
std::optional<nlohmann::json> parseBoundedJSON(std::string_view text);

} // namespace tavik
