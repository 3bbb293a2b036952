#include "Base/Fatal.h"

#include <cstdlib>
#include <iostream>

namespace tavik {

void fatal(std::string_view what) {
    std::cerr << "tavik: fatal: " << what << std::endl;
    std::abort();
}

} // namespace tavik
