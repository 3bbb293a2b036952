#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace tavik {

/// Whether there is a terminal to ask at, whatever standard input and output are.
bool canAsk();

/// Asks the person at the terminal for a line that is not shown as it is typed. Nothing when the
/// person does not answer, as with Ctrl+C.
std::optional<std::string> askSecret(std::string_view question);

} // namespace tavik
