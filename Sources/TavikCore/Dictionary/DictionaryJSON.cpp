#include "Dictionary/DictionaryJSON.h"

#include <nlohmann/json.hpp>

namespace tavik {

void to_json(nlohmann::json& json, const DictEntry& entry) {
    json = {{"word", entry.word},
            {"phonetic", entry.phonetic},
            {"translations", entry.translations},
            {"definitions", entry.definitions},
            {"tags", entry.tags},
            {"collins", entry.collins},
            {"oxford", entry.oxford},
            {"exchange", entry.exchange}};
}

void from_json(const nlohmann::json& json, DictEntry& entry) {
    json.at("word").get_to(entry.word);
    json.at("phonetic").get_to(entry.phonetic);
    json.at("translations").get_to(entry.translations);
    json.at("definitions").get_to(entry.definitions);
    json.at("tags").get_to(entry.tags);
    json.at("collins").get_to(entry.collins);
    json.at("oxford").get_to(entry.oxford);
    json.at("exchange").get_to(entry.exchange);
}

void to_json(nlohmann::json& json, const ExampleSentence& sentence) {
    json = {{"en", sentence.en}, {"zh", sentence.zh}};
}

void from_json(const nlohmann::json& json, ExampleSentence& sentence) {
    json.at("en").get_to(sentence.en);
    json.at("zh").get_to(sentence.zh);
}

} // namespace tavik
