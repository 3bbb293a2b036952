#pragma once

#include <stdexcept>

namespace tavik {

/// Why a dictionary cannot be built; `what()` is a Chinese sentence that says what to do.
class BuildError : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

} // namespace tavik
