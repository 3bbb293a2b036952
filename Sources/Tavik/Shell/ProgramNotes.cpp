#include "Shell/ProgramNotes.h"

namespace tavik {

std::string bookSummary(const ProgramState& state) {
    if (!state.isBookReadable) return "现在读不到生词本";
    if (state.totalWords < 1) return "生词本还是空的";
    const std::string words = "生词本里有 " + std::to_string(state.totalWords) + " 个生词，";
    if (state.dueNow < 1) return words + "今天的复习已完成";
    return words + std::to_string(state.dueNow) + " 个待复习";
}

std::vector<std::string> programNotes(const ProgramState& state) {
    std::vector<std::string> notes;
    if (!state.hasTray)
        notes.emplace_back("这个桌面没有系统托盘，所以看不到 Tavik 的图标。"
                           "Tavik 一直在后台运行；再次启动它，就会打开这个窗口。");
    if (!state.hasDictionary)
        notes.emplace_back("没有找到可用的词典，查词只能靠生词本和大模型。"
                           "请重新安装 Tavik，或者用 tavik-dict 生成词典。");
    if (state.bookTrouble) notes.push_back(*state.bookTrouble);
    if (state.settingsTrouble) notes.push_back(*state.settingsTrouble);
    if (state.hotKeyTrouble) notes.push_back(*state.hotKeyTrouble);
    return notes;
}

} // namespace tavik
