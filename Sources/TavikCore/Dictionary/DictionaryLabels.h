#pragma once

#include <string>
#include <string_view>

namespace tavik {

/// The Chinese name of an exam or word list in `DictEntry::tags`; an unknown tag names itself.
std::string tagLabel(std::string_view tag);

/// The Chinese name of an inflection key of `DictEntry::exchange`; empty for a key that names no
/// inflection.
std::string exchangeLabel(std::string_view key);

} // namespace tavik
