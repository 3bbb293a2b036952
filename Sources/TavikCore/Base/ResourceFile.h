#pragma once

#include <filesystem>
#include <string_view>

namespace tavik {

/// Where the file `name` of the program's resources lies: `<prefix>/share/tavik/` of an installed
/// program, else `Resources/` of the source tree this program was built from. When neither holds
/// the file, the answer is the place where an installation would put it.
std::filesystem::path resourceFile(std::string_view name);

} // namespace tavik
