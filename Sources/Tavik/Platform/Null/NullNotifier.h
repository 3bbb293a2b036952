#pragma once

#include "Ports/Notifier.h"

namespace tavik {

/// Where nothing can be shown.
class NullNotifier final : public Notifier {
public:
    void notify(const std::string&, const std::string&) override {}
};

} // namespace tavik
