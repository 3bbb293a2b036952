#include "Base/Fatal.h"

#include <cstdio>
#include <cstdlib>

namespace tavik {

void fatal(std::string_view what) {
    std::fprintf(stderr, "tavik: fatal: %.*s\n", static_cast<int>(what.size()), what.data());
    std::abort();
}

} // namespace tavik
