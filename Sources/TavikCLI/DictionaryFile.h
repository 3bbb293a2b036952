#pragma once

#include "Dictionary/OfflineDictionary.h"

#include <memory>
#include <string>

namespace tavik {

/// The dictionary at `path`, or the program's own when `path` is empty. Throws a runtime error with
/// a Chinese sentence that tells what is wrong and what to do.
std::unique_ptr<OfflineDictionary> openDictionary(const std::string& path);

} // namespace tavik
