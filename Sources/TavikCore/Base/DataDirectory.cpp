#include "Base/DataDirectory.h"

#include <pwd.h>
#include <sys/stat.h>
#include <unistd.h>

#include <array>
#include <cstdlib>

namespace tavik {
namespace fs = std::filesystem;

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
    // A relative path there is void by the standard that defines the variable.
    const fs::path applicationData = environment("XDG_DATA_HOME").value_or("");
    if (applicationData.is_absolute()) return applicationData / "Tavik";
    return homeDirectory(environment) / ".local" / "share" / "Tavik";
}

void keepFilesPrivate() {
    umask(S_IRWXG | S_IRWXO);
}

} // namespace tavik
