#include "Explanation/ExplanationJSON.h"

#include "Dictionary/DictionaryJSON.h"

#include <nlohmann/json.hpp>

namespace tavik {

void to_json(nlohmann::json& json, const ContextExplanation& explanation) {
    json = {{"meaningInContext", explanation.meaningInContext},
            {"translation", explanation.translation},
            {"examples", explanation.examples}};
}

void from_json(const nlohmann::json& json, ContextExplanation& explanation) {
    json.at("meaningInContext").get_to(explanation.meaningInContext);
    json.at("translation").get_to(explanation.translation);
    json.at("examples").get_to(explanation.examples);
}

} // namespace tavik
