#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace tavik {

/// Asks the person at the terminal for a line that is not shown as it is typed. Nothing when there
/// is no terminal or the person does not answer.
std::optional<std::string> askSecret(std::string_view question);

} // namespace tavik
