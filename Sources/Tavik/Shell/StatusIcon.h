#pragma once

#include <QIcon>
#include <cstdint>

namespace tavik {

/// The program's icon, with the count of due words as a badge: trays have no room for text.
QIcon statusIcon(std::int64_t dueNow);

} // namespace tavik
