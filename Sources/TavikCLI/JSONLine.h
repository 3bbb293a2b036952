#pragma once

#include <nlohmann/json_fwd.hpp>

#include <string>

namespace tavik {

/// `json` on one line, without its end; what is no UTF-8 in it becomes U+FFFD.
std::string jsonLine(const nlohmann::json& json);
std::string jsonLine(const nlohmann::ordered_json& json);

} // namespace tavik
