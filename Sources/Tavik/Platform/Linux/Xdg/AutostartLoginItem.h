#pragma once

#include "Ports/LoginItem.h"

#include <filesystem>

namespace tavik {

/// The entry in the user's autostart folder.
class AutostartLoginItem final : public LoginItem {
public:
    /// `program` is what the desktop is to start; `folder` is where desktops look for entries.
    AutostartLoginItem(const std::filesystem::path& folder, std::filesystem::path program);

    /// False, too, when the user or the desktop has switched the entry off in its own file.
    bool isEnabled() const override;

    void setEnabled(bool isEnabled) override;

private:
    std::filesystem::path entry;
    std::filesystem::path program;
};

} // namespace tavik
