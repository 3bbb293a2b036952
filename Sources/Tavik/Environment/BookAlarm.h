#pragma once

#include "Base/Date.h"

#include <optional>
#include <string>

namespace tavik {

/// When the vocabulary book could not be read or written, and why: a Chinese sentence.
struct BookTrouble {
    Date when;
    std::string what;

    bool operator==(const BookTrouble&) const = default;
};

/// Tells when the user is to hear of a failure of the book: at once, but not more often than once
/// an hour.
class BookAlarm {
public:
    /// Whether the user is to be told of the failure at `now`.
    bool raise(Date now) {
        const bool isDue = !lastTold || now < *lastTold || now - *lastTold >= std::chrono::hours(1);
        if (isDue) lastTold = now;
        return isDue;
    }

private:
    std::optional<Date> lastTold;
};

} // namespace tavik
