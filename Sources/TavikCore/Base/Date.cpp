#include "Base/Date.h"

#include <array>
#include <cstdio>

namespace tavik {

std::string iso8601(Date date) {
    using namespace std::chrono;
    const auto moment = round<milliseconds>(date);
    const auto midnight = floor<days>(moment);
    const year_month_day day(midnight);
    const hh_mm_ss time(moment - midnight);
    std::array<char, 64> text{};
    static_cast<void>(std::snprintf(text.data(), text.size(), "%04d-%02u-%02uT%02d:%02d:%02d.%03dZ",
                                    int(day.year()), unsigned(day.month()), unsigned(day.day()),
                                    int(time.hours().count()), int(time.minutes().count()),
                                    int(time.seconds().count()), int(time.subseconds().count())));
    return text.data();
}

} // namespace tavik
