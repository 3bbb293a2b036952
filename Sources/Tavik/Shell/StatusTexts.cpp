#include "Shell/StatusTexts.h"

#include "HotKey/KeyNames.h"

namespace tavik {

std::string statusBadge(std::int64_t dueNow) {
    if (dueNow < 1) return "";
    return dueNow > 99 ? "99+" : std::to_string(dueNow);
}

std::string statusToolTip(std::int64_t dueNow) {
    if (dueNow < 1) return "Tavik";
    return "Tavik：" + std::to_string(dueNow) + " 个生词待复习";
}

std::string lookupRow(const std::string& hotKey, bool isRegistered) {
    return "划词查询  " + hotKey + (isRegistered ? "" : "（快捷键被占用）");
}

std::string reviewRow(std::int64_t dueNow) {
    if (dueNow < 1) return "今日复习（已完成）";
    return "今日复习（" + std::to_string(dueNow) + " 个待复习）";
}

std::string vocabularyRow(std::int64_t totalWords) {
    return "生词本（" + std::to_string(totalWords) + "）";
}

std::string hotKeyName(const HotKeyCombo& combo) {
    return display(combo) + "（" + localName(combo) + "）";
}

std::string unreadSelectionNote(const CaptureError& error, const std::string& hotKeyName) {
    const std::string what = error.what();
    if (error.kind() == CaptureError::Kind::notTrusted)
        return what + "。可以在托盘菜单里开启，或在此输入。";
    return what + "。请先选中单词，再按 " + hotKeyName + "，或在此输入。";
}

std::string refusedHotKeyNote(const std::string& hotKeyName) {
    return "快捷键 " + hotKeyName
           + " 被其他程序占用，或者桌面没有同意。选中单词后，可以从托盘菜单或 Tavik "
             "的窗口里选「划词查询」。";
}

} // namespace tavik
