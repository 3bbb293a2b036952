#pragma once

#include "Explanation/ExplanationRecords.h"

#include <nlohmann/json_fwd.hpp>

namespace tavik {

/// An explanation as a JSON object; each key is the field's name. Reading throws
/// `nlohmann::json::exception` when a key is missing or of another type.
void to_json(nlohmann::json& json, const ContextExplanation& explanation);
void from_json(const nlohmann::json& json, ContextExplanation& explanation);

} // namespace tavik
