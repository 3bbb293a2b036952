#pragma once

#include "TavikDict/ECDICT.h"

#include <filesystem>
#include <vector>

namespace tavik {

/// Writes a StarDict dictionary, not compressed, into `directory`: for each headword an article of
/// its phonetic transcription, translation and definition. The format has no room for headwords of
/// more than 255 bytes; they are left out. Throws a runtime error when it cannot be written.
void writeStarDict(const std::vector<Headword>& headwords, const std::filesystem::path& directory);

} // namespace tavik
