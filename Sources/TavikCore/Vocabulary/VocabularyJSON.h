#pragma once

#include "Vocabulary/VocabularyRecords.h"

#include <nlohmann/json_fwd.hpp>

namespace tavik {

/// The book's records as JSON objects; each key is the field's name, what is absent is null, and
/// moments are texts of ISO 8601 in UTC.
void to_json(nlohmann::json& json, const Word& word);
void to_json(nlohmann::json& json, const Card& card);
void to_json(nlohmann::json& json, const Encounter& encounter);
void to_json(nlohmann::json& json, const VocabItem& item);

void to_json(nlohmann::json& json, const SourceInfo& source);
/// Keys that are missing or null read as absent. Throws `nlohmann::json::exception` for a value of
/// another type.
void from_json(const nlohmann::json& json, SourceInfo& source);

} // namespace tavik
