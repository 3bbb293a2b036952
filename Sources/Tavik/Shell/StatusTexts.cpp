#include "Shell/StatusTexts.h"

namespace tavik {

std::string statusBadge(std::int64_t dueNow) {
    if (dueNow < 1) return "";
    return dueNow > 99 ? "99+" : std::to_string(dueNow);
}

std::string statusToolTip(std::int64_t dueNow) {
    if (dueNow < 1) return "Tavik";
    return "Tavik：" + std::to_string(dueNow) + " 个生词待复习";
}

} // namespace tavik
