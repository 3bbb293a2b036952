#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace tavik {

/// The fields of one CSV record (RFC 4180) that stands on one line; nothing when its quotes do not
/// match.
std::optional<std::vector<std::string>> csvFields(std::string_view line);

} // namespace tavik
