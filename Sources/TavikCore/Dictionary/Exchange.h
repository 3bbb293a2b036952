#pragma once

#include <map>
#include <string>
#include <string_view>

namespace tavik {

/// A word's forms as the dictionary lists them: "key:form" items between slashes, such as
/// "p:ran/i:running". Items without a key or a form are passed over, of several with one key the
/// last counts. Never fails.
std::map<std::string, std::string> parseExchange(std::string_view text);

} // namespace tavik
