#pragma once

#include <string>

namespace tavik {

/// Shows the desktop's notifications. Called on the main thread, returns at once; where the desktop
/// has none, nothing is shown.
class Notifier {
public:
    virtual ~Notifier() = default;

    virtual void notify(const std::string& title, const std::string& body) = 0;
};

} // namespace tavik
