#pragma once

#include "TavikDict/BuildObserver.h"

namespace tavik {

/// Hears everything and says nothing.
class SilentObserver final : public BuildObserver {
public:
    void stageBegan(std::string_view /*title*/, std::int64_t /*total*/) override {}

    void stageAdvanced(std::int64_t /*done*/) override {}

    void lineSkipped(const std::filesystem::path& /*file*/, std::int64_t /*line*/,
                     std::string_view /*reason*/) override {}
};

} // namespace tavik
