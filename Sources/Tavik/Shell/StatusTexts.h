#pragma once

#include <cstdint>
#include <string>

namespace tavik {

/// The count as it fits into the icon: "99+" from a hundred on, nothing when no word is due.
std::string statusBadge(std::int64_t dueNow);

std::string statusToolTip(std::int64_t dueNow);

} // namespace tavik
