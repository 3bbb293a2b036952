#include "Base/Links.h"

#include <system_error>

namespace tavik {
namespace fs = std::filesystem;

fs::path followingLinks(const fs::path& path) {
    // As many as the system itself follows.
    constexpr int maxLinks = 40;
    fs::path place = path;
    std::error_code error;
    for (int links = 0; links < maxLinks; ++links) {
        const fs::path target = fs::read_symlink(place, error);
        if (error) break;
        place = place.parent_path() / target;
    }
    const fs::path canonical = fs::weakly_canonical(place, error);
    return error ? place : canonical;
}

} // namespace tavik
