#pragma once

#include "Base/Calendar.h"
#include "Base/Date.h"

#include <string>

namespace tavik {

/// When a card is due, in Chinese: "现在", "今天 19:38", "明天", "5 天后", and from the 31st day on
/// the date, "2027年1月3日".
std::string dueLabel(Date due, Date now, const Calendar& calendar);

} // namespace tavik
