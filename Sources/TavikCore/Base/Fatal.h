#pragma once

#include <string_view>

namespace tavik {

/// Stops the program with `what` on standard error. For internal impossibilities only, never for
/// bad input: input that can come from outside is reported as an error.
[[noreturn]] void fatal(std::string_view what);

} // namespace tavik
