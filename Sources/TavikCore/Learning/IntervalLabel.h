#pragma once

#include "Base/Date.h"

#include <string>

namespace tavik {

/// How far away `to` is, in Chinese: "10 分钟后", "3 天后", "1.5 年后". A moment in the past reads
/// as one minute. A distance that is no number, or beyond all numbers of days, stops the program.
std::string intervalLabel(Date from, Date to);

} // namespace tavik
