#include "Capture/CopyKeys.h"

#include "Text/Unicode.h"

#include <algorithm>
#include <string_view>

namespace tavik {
namespace {

/// Classes of windows, or last parts of identifiers, in lower case, with a space on either side.
constexpr std::string_view terminals =
    " alacritty aterm black-box blackbox console contour cool-retro-term deepin-terminal "
    "electerm eterm foot footclient ghostty gnome-terminal gnome-terminal-server guake "
    "hyper kgx kitty konsole lilyterm lxterminal mate-terminal mlterm pterm ptyxis putty "
    "qterminal rio roxterm rxvt sakura st tabby terminal terminator terminology termite "
    "tilda tilix tym urxvt uxterm warp wezterm wezterm-gui x-terminal-emulator "
    "xfce4-terminal xterm yakuake zutty ";
constexpr std::string_view editors =
    " code code-insiders code-oss codium cursor emacs emacsclient goneovim gvim neovide nvim "
    "nvim-qt vim vscodium windsurf zed ";
constexpr std::string_view remoteDesktops =
    " anydesk boxes connections freerdp gnome-boxes gnome-connections krdc looking-glass-client "
    "moonlight mstsc "
    "nxagent nxplayer parsec qemu qemu-system-x86_64 rdesktop remmina remote-viewer rustdesk "
    "sdl-freerdp spicy teamviewer vinagre virt-manager virt-viewer virtualbox virtualbox-machine "
    "virtualboxvm "
    "vmplayer vmware vncviewer wlfreerdp x2goagent x2goclient xephyr xfreerdp xnest xpra ";

bool isNamed(const std::string& name) {
    const auto lists = {terminals, editors, remoteDesktops};
    return std::ranges::any_of(lists, [word = ' ' + name + ' '](std::string_view list) {
        return list.find(word) != std::string_view::npos;
    });
}

/// Without what names a program file, as Wine and some packages have it, and in one word.
std::string simplified(const std::string& bundleID) {
    std::string name = lowercased(bundleID);
    for (const std::string_view suffix : {".exe", ".bin"})
        if (name.ends_with(suffix)) name.resize(name.size() - suffix.size());
    std::ranges::replace(name, ' ', '-');
    return name;
}

} // namespace

bool mayActOnCopyKeys(const std::string& bundleID) {
    const std::string identifier = simplified(bundleID);
    return isNamed(identifier) || isNamed(identifier.substr(identifier.rfind('.') + 1))
           || identifier.starts_with("jetbrains-") || identifier.starts_with("st-");
}

} // namespace tavik
