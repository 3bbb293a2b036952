#include "Base/DataDirectory.h"

#include <pwd.h>
#include <sys/stat.h>
#include <unistd.h>

#include <array>
#include <cstdlib>

namespace tavik {
namespace fs = std::filesystem;

namespace {

/// The directory that `variable` names, else `atHome` in the user's home.
fs::path standardDirectory(const EnvironmentReader& environment, const char* variable,
                           const char* atHome) {
    // A relative path there is void by the standard that defines the variables.
    fs::path named = environment(variable).value_or("");
    if (named.is_absolute()) return named;
    return homeDirectory(environment) / atHome;
}

} // namespace

std::optional<std::string> environmentVariable(const char* name) {
    const char* const value = std::getenv(name);
    if (value == nullptr) return std::nullopt;
    return value;
}

fs::path homeDirectory(const EnvironmentReader& environment) {
    const std::string home = environment("HOME").value_or("");
    if (!home.empty()) return home;
    passwd entry{};
    passwd* user = nullptr;
    std::array<char, 16384> texts{};
    getpwuid_r(getuid(), &entry, texts.data(), texts.size(), &user);
    return user == nullptr ? "/" : user->pw_dir;
}

fs::path dataDirectory(const EnvironmentReader& environment) {
    if (const auto named = environment("TAVIK_DATA_DIR"))
        return named->empty() ? fs::path(".") : fs::path(*named);
    return standardDirectory(environment, "XDG_DATA_HOME", ".local/share") / "Tavik";
}

fs::path configDirectory(const EnvironmentReader& environment) {
    return standardDirectory(environment, "XDG_CONFIG_HOME", ".config");
}

void keepFilesPrivate() {
    umask(S_IRWXG | S_IRWXO);
}

} // namespace tavik
