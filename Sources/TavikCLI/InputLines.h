#pragma once

#include <functional>
#include <iosfwd>
#include <string>

namespace tavik {

/// Calls `take` for each line of `input` that is not blank; a byte-order mark before the first is
/// no part of it.
void forEachLine(std::istream& input, const std::function<void(const std::string&)>& take);

} // namespace tavik
