#pragma once

namespace tavik {

/// Whether the X server that the environment names, if any, takes this process. May wait for it.
bool canReachXServer();

} // namespace tavik
