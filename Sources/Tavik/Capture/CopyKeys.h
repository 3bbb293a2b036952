#pragma once

#include <string>

namespace tavik {

/// Whether Ctrl+C may do something else than copy in the program with this identifier: it stops
/// what runs in a terminal, begins or ends commands in some editors, and goes to whatever has the
/// keyboard on the other computer in a remote desktop.
bool mayActOnCopyKeys(const std::string& bundleID);

} // namespace tavik
