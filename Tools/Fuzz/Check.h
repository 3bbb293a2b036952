#pragma once

#include <cstdio>
#include <cstdlib>
#include <string_view>

namespace tavik::fuzz {

/// Stops the program where an input breaks a promise, so that the fuzzer keeps the input.
inline void check(bool isKept, const char* promise) {
    if (isKept) return;
    static_cast<void>(std::fprintf(stderr, "broken promise: %s\n", promise));
    std::abort();
}

inline std::string_view text(const unsigned char* data, std::size_t size) {
    return {reinterpret_cast<const char*>(data), size};
}

} // namespace tavik::fuzz
