#pragma once

#include <filesystem>
#include <functional>
#include <optional>
#include <string>

namespace tavik {

/// Reads an environment variable; nothing when it is not set.
using EnvironmentReader = std::function<std::optional<std::string>(const char* name)>;

/// Reads this process's own environment.
std::optional<std::string> environmentVariable(const char* name);

/// Where the user's data lie: "TAVIK_DATA_DIR", of which an empty one means the current directory,
/// else "Tavik" in the user's directory for application data.
std::filesystem::path dataDirectory(const EnvironmentReader& environment);

/// Where programs keep what the user has set: "XDG_CONFIG_HOME", else ".config" at home.
std::filesystem::path configDirectory(const EnvironmentReader& environment);

/// The user's home directory.
std::filesystem::path homeDirectory(const EnvironmentReader& environment);

/// From here on, whatever this process creates only the user can read. For the start of a program.
void keepFilesPrivate();

} // namespace tavik
