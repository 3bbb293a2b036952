#pragma once

#include <optional>
#include <string_view>

namespace tavik {

/// The base form of a word of a closed class, such as «be» for «was» and «good» for «better»; empty
/// for one that is its own base form though it looks inflected, such as «his» or «news»; nothing
/// for a word of no closed class. `word` is lower-case.
std::optional<std::string_view> closedClassBase(std::string_view word);

} // namespace tavik
