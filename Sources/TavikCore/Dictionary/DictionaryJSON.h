#pragma once

#include "Dictionary/DictionaryRecords.h"

#include <nlohmann/json_fwd.hpp>

namespace tavik {

/// The dictionary's records as JSON objects; each key is the field's name. Reading throws
/// `nlohmann::json::exception` when a key is missing or of another type.
void to_json(nlohmann::json& json, const DictEntry& entry);
void from_json(const nlohmann::json& json, DictEntry& entry);
void to_json(nlohmann::json& json, const ExampleSentence& sentence);
void from_json(const nlohmann::json& json, ExampleSentence& sentence);

} // namespace tavik
