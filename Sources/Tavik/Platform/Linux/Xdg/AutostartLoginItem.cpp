#include "Platform/Linux/Xdg/AutostartLoginItem.h"

#include "Base/AsideFile.h"

#include <fstream>
#include <optional>
#include <string>
#include <string_view>
#include <system_error>
#include <utility>

namespace tavik {
namespace fs = std::filesystem;

namespace {

constexpr const char* entryName = "com.tavik.app.desktop";

std::string_view trimmedLine(std::string_view text) {
    constexpr std::string_view blanks = " \t\r";
    const auto first = text.find_first_not_of(blanks);
    if (first == std::string_view::npos) return {};
    return text.substr(first, text.find_last_not_of(blanks) - first + 1);
}

/// The value of `key` in the group that desktop entries begin with.
std::optional<std::string> valueOf(const fs::path& entry, std::string_view key) {
    std::ifstream lines(entry);
    bool isInGroup = false;
    for (std::string line; std::getline(lines, line);) {
        const std::string_view text = trimmedLine(line);
        if (text.starts_with('[')) isInGroup = text == "[Desktop Entry]";
        const auto equals = text.find('=');
        if (!isInGroup || equals == std::string_view::npos) continue;
        if (trimmedLine(text.substr(0, equals)) == key)
            return std::string(trimmedLine(text.substr(equals + 1)));
    }
    return std::nullopt;
}

/// A program's path as the value of Exec: quoted for the command line it is, then escaped for the
/// file it stands in, with "%" doubled since it would begin a field code.
std::string execValue(const fs::path& program) {
    std::string quoted = "\"";
    for (const char character : program.string()) {
        if (std::string_view("\"`$\\").find(character) != std::string_view::npos) quoted += '\\';
        if (character == '%') quoted += '%';
        quoted += character;
    }
    quoted += '"';
    std::string escaped;
    for (const char character : quoted) {
        if (character == '\\') escaped += '\\';
        escaped += character;
    }
    return escaped;
}

std::string contentsFor(const fs::path& program) {
    return "[Desktop Entry]\n"
           "Type=Application\n"
           "Name=Tavik\n"
           "Comment=划词翻译、生词本、记忆曲线复习\n"
           "Exec="
           + execValue(program)
           + "\n"
             "Icon=com.tavik.app\n"
             "Terminal=false\n"
             "X-GNOME-Autostart-enabled=true\n";
}

void write(const fs::path& entry, const fs::path& program) {
    // A line break would end the value, and nothing can stand for it.
    if (program.string().find('\n') != std::string::npos)
        throw LoginItemError("程序的路径里有换行，不能设置登录时启动");
    const fs::path folder = directoryOf(entry);
    std::error_code error;
    fs::create_directories(folder, error);
    if (error && !fs::is_directory(folder))
        throw LoginItemError("建不了目录 " + folder.string() + "（" + error.message()
                             + "），请检查磁盘空间和权限");
    try {
        replaceFile(entry, contentsFor(program));
    } catch (const FileError& failure) {
        throw LoginItemError(failure.what());
    }
}

void removeEntry(const fs::path& entry) {
    std::error_code error;
    fs::remove(entry, error);
    if (error)
        throw LoginItemError("删不掉 " + entry.string() + "（" + error.message()
                             + "），请检查权限");
}

} // namespace

AutostartLoginItem::AutostartLoginItem(const fs::path& folder, fs::path program)
    : entry(folder / entryName), program(std::move(program)) {}

bool AutostartLoginItem::isEnabled() const {
    std::error_code error;
    if (!fs::is_regular_file(entry, error)) return false;
    return valueOf(entry, "Hidden") != "true"
           && valueOf(entry, "X-GNOME-Autostart-enabled") != "false";
}

void AutostartLoginItem::setEnabled(bool isEnabled) {
    if (isEnabled)
        write(entry, program);
    else
        removeEntry(entry);
}

} // namespace tavik
