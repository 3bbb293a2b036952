#pragma once

#include "Dictionary/DictionaryRecords.h"

#include <string>
#include <string_view>
#include <vector>

namespace tavik {

/// The Chinese name of an exam or word list in `DictEntry::tags`; an unknown tag names itself.
std::string tagLabel(std::string_view tag);

/// The inflections of an entry in their usual order, each with its Chinese name: past tense, past
/// and present participle, third person, plural, comparative, superlative.
struct Inflection {
    std::string label;
    std::string form;
};

std::vector<Inflection> inflections(const DictEntry& entry);

} // namespace tavik
