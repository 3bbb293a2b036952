#include "TavikCLI/JSONLine.h"

#include <nlohmann/json.hpp>

namespace tavik {
namespace {

template<typename JSON>
std::string line(const JSON& json) {
    return json.dump(-1, ' ', false, JSON::error_handler_t::replace);
}

} // namespace

std::string jsonLine(const nlohmann::json& json) {
    return line(json);
}

std::string jsonLine(const nlohmann::ordered_json& json) {
    return line(json);
}

} // namespace tavik
