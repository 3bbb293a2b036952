#pragma once

#include "WordLists.h"

namespace tavik {

/// Prints what the operations of the dictionary cost within one process that has it open. Each
/// word counts once, by the median of its passes.
void reportInProcess(const std::string& dictionary, const WordLists& words);

/// The mean cost of `OfflineDictionary::entry` over `words`.
double meanEntryMicroseconds(const std::string& dictionary, const std::vector<std::string>& words);

} // namespace tavik
