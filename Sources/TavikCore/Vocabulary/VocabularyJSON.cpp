#include "Vocabulary/VocabularyJSON.h"

#include <nlohmann/json.hpp>

namespace tavik {
namespace {

template<typename T>
nlohmann::json orNull(const std::optional<T>& value) {
    return value ? nlohmann::json(*value) : nlohmann::json(nullptr);
}

nlohmann::json orNull(const std::optional<Date>& date) {
    return date ? nlohmann::json(iso8601(*date)) : nlohmann::json(nullptr);
}

std::optional<std::string> optionalText(const nlohmann::json& object, const char* key) {
    const auto found = object.find(key);
    if (found == object.end() || found->is_null()) return std::nullopt;
    return found->get<std::string>();
}

} // namespace

void to_json(nlohmann::json& json, const Word& word) {
    json = {{"id", word.id},
            {"lemma", word.lemma},
            {"headword", word.headword},
            {"phonetic", word.phonetic},
            {"brief", word.brief},
            {"createdAt", iso8601(word.createdAt)}};
}

void to_json(nlohmann::json& json, const Card& card) {
    json = {{"wordID", card.wordID},         {"state", rawValue(card.state)},
            {"due", iso8601(card.due)},      {"stability", card.stability},
            {"difficulty", card.difficulty}, {"reps", card.reps},
            {"lapses", card.lapses},         {"lastReview", orNull(card.lastReview)}};
}

void to_json(nlohmann::json& json, const SourceInfo& source) {
    json = {{"appName", orNull(source.appName)},
            {"bundleID", orNull(source.bundleID)},
            {"url", orNull(source.url)}};
}

void from_json(const nlohmann::json& json, SourceInfo& source) {
    source.appName = optionalText(json, "appName");
    source.bundleID = optionalText(json, "bundleID");
    source.url = optionalText(json, "url");
}

void to_json(nlohmann::json& json, const Encounter& encounter) {
    json = {{"id", encounter.id},
            {"wordID", encounter.wordID},
            {"selection", encounter.selection},
            {"sentence", orNull(encounter.sentence)},
            {"contextMeaning", orNull(encounter.contextMeaning)},
            {"source", encounter.source},
            {"seenAt", iso8601(encounter.seenAt)}};
}

void to_json(nlohmann::json& json, const VocabItem& item) {
    json = {{"word", item.word},
            {"card", item.card},
            {"latest", orNull(item.latest)},
            {"encounterCount", item.encounterCount}};
}

} // namespace tavik
