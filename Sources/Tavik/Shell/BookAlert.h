#pragma once

#include "Base/Date.h"

#include <filesystem>
#include <memory>
#include <optional>

namespace tavik {

class AppEnvironment;
class AppSettings;
struct EnvironmentPorts;

/// Builds the environment. Where the book cannot be opened, the user is told why in a window of its
/// own and the answer is null; where opening it would destroy what is left of it, the user may have
/// that set aside and begin with an empty book.
std::unique_ptr<AppEnvironment>
openedEnvironment(const std::filesystem::path& dataDirectory, AppSettings& settings,
                  const std::optional<std::filesystem::path>& dictionaryPath,
                  const EnvironmentPorts& ports);

/// Brings such a window to the front, if there is one.
void raiseAlert();

} // namespace tavik
