#pragma once

#include <optional>
#include <string>

namespace tavik {

/// `told` with one more program, each a line of its own; nothing when the user need not be told of
/// it: because that was done before, or the list has grown as no honest desktop makes it grow.
std::optional<std::string> withStartOptionTold(const std::string& told,
                                               const std::string& bundleID);

/// How the pages of that program become readable: in Chinese, for the user.
std::string startOptionHint(const std::string& bundleID);

} // namespace tavik
