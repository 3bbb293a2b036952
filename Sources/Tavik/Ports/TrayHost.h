#pragma once

#include "Base/Published.h"

namespace tavik {

/// A panel that can hold our icon, by one of the ways to put it there.
class TrayHost {
public:
    enum class Presence {
        /// Not told yet, by who may be busy or hung.
        unknown,
        absent,
        present,
    };

    virtual ~TrayHost() = default;

    /// The last known presence; asking costs nothing. For the main thread.
    virtual const Published<Presence>& presence() const = 0;
};

} // namespace tavik
