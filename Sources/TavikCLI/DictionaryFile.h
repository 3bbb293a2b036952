#pragma once

#include "Dictionary/OfflineDictionary.h"

#include <memory>
#include <string>

namespace tavik {

/// The dictionary at `path`, or the program's own when `path` is empty. Throws a runtime error with
/// a Chinese sentence that tells what is wrong and what to do.
std::unique_ptr<OfflineDictionary> openDictionary(const std::string& path);

/// The same for commands that do without: when there is no dictionary at the default place,
/// nothing.
std::unique_ptr<OfflineDictionary> openDictionaryIfAny(const std::string& path);

} // namespace tavik
