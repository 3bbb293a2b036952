# shellcheck shell=bash
#
# Installs the packages of Debian and Ubuntu that Tavik needs. Follows common.sh.
: "${root:?}"

# shellcheck disable=SC2034  # The lists are for the scripts that source this file.
{
    run_packages=(
        g++ cmake ninja-build
        libsqlite3-dev libicu-dev nlohmann-json3-dev libcli11-dev liburiparser-dev
        libcurl4-openssl-dev libssl-dev
        pkg-config qt6-base-dev qt6-svg-dev qt6-translations-l10n qt6-wayland libglib2.0-dev libsecret-1-dev
        libspeechd-dev libxcb1-dev
        libxcb-randr0-dev libxcb-res0-dev libxcb-xfixes0-dev libxcb-xinput-dev libxcb-xtest0-dev
        fonts-noto-core fonts-noto-cjk
        wordnet-base ca-certificates
    )
    # For machines without a desktop.
    private_desktop_packages=(
        xvfb openbox x11-utils dbus libglib2.0-bin at-spi2-core python3-gi tint2 imagemagick
    )
    test_packages=(libgtest-dev libgmock-dev clang-format clang-tidy shellcheck git)
    desktop_test_packages=(
        xvfb openbox x11-utils x11-xkb-utils x11-xserver-utils xdotool dbus libglib2.0-bin
        at-spi2-core gnome-keyring libsecret-tools dunst xfce4-notifyd libnotify-bin trayer tint2
        speech-dispatcher speech-dispatcher-espeak-ng speech-dispatcher-audio-plugins
        pulseaudio pulseaudio-utils
        xfwm4 metacity systemd xdg-desktop-portal
        xclip mousepad featherpad firefox-esr chromium xfce4-terminal evince fonts-dejavu-core
        xterm tk xfce4-clipman parcellite
        python3-gi python3-dbus python3-dbusmock
    )
    benchmark_packages=(sdcv)
    fuzz_packages=(clang-14 libclang-rt-14-dev)
}
# A command that is on PATH already, wherever it comes from, needs no package.
command -v npm >/dev/null || run_packages+=(npm)
command -v python3 >/dev/null || test_packages+=(python3)

# Installs those of the named packages that are missing.
ensure_packages() {
    local missing
    missing=$(missing_packages "$@")
    if [[ -n $missing ]]; then
        # shellcheck disable=SC2086  # One word for each package.
        install_packages $missing
    fi
}

missing_packages() {
    local package state
    local -A installed=()
    while read -r package state; do
        if [[ $state == installed ]]; then
            installed[$package]=yes
        fi
    done < <(dpkg-query -W -f='${Package} ${db:Status-Status}\n' "$@" 2>/dev/null)
    for package in "$@"; do
        if [[ -z ${installed[$package]:-} ]]; then
            printf '%s ' "$package"
        fi
    done
}

install_packages() {
    local log
    local -a as_root=()
    if ! command -v apt-get >/dev/null; then
        fail "这个系统没有 apt-get，请自行安装这些软件包（Debian 名称）：$*"
    fi
    if ((EUID != 0)); then
        if ! command -v sudo >/dev/null; then
            fail "需要安装软件包，但当前不是 root，也没有 sudo。请以 root 身份运行：apt-get install $*"
        fi
        as_root=(sudo)
        is_interactive || as_root+=(-n)
    fi
    log=$(new_log packages)
    say "需要先用 apt-get 安装这些软件包（以及它们的依赖）：$*"
    if ! run_apt "$log" install "$@"; then
        fail "软件包没有装好：$(apt_failure "$log")。详情见 $log"
    fi
    end_progress
    say "软件包已装好。"
}

# run_apt LOG install PACKAGE…. Uses `as_root` of the caller. Lists that cannot be renewed are no
# failure by themselves: one broken source of many must not stand in the way.
run_apt() {
    local log=$1
    shift
    local -a apt=(
        "${as_root[@]}" env LC_ALL=C DEBIAN_FRONTEND=noninteractive
        apt-get -y -o DPkg::Lock::Timeout=120 -o Acquire::Retries=2 -o APT::Status-Fd=1
    )
    "${apt[@]}" update </dev/null 2>&1 | show_apt "$log" "正在更新软件包列表" || true
    "${apt[@]}" --no-install-recommends "$@" </dev/null 2>&1 | show_apt "$log" "正在下载软件包"
}

# show_apt LOG DOWNLOADING. Turns apt's status lines into progress and writes all others to the log.
show_apt() {
    local line
    while IFS= read -r line; do
        if [[ $line =~ ^dlstatus:.*:([0-9]+)\.[0-9]+: ]]; then
            progress "$2：${BASH_REMATCH[1]}%"
        elif [[ $line =~ ^pmstatus:.*:([0-9]+)\.[0-9]+: ]]; then
            progress "正在安装软件包：${BASH_REMATCH[1]}%"
        else
            printf '%s\n' "$line" >>"$1"
        fi
    done
}

apt_failure() {
    if grep -qE '^sudo: |not allowed to execute|not in the sudoers file' "$1"; then
        printf '没有通过 sudo 得到 root 权限'
    elif log_shows_full_disk "$1"; then
        printf '磁盘空间不足'
    elif grep -qE 'Could not (resolve|connect)|Temporary failure|Network is unreachable|Connection (failed|timed out)' "$1"; then
        printf '连不上软件源，请检查网络'
    elif grep -qE 'Could not get lock|Unable to (lock|acquire)' "$1"; then
        printf '另一个程序一直占用着软件包管理器'
    elif grep -q 'dpkg was interrupted' "$1"; then
        printf '以前的一次安装被中断了，请先以 root 身份运行 dpkg --configure -a'
    elif grep -qE 'Unable to locate package|no installation candidate' "$1"; then
        printf '软件源里没有其中的软件包，请检查系统版本和软件源'
    else
        printf 'apt-get 报告了错误'
    fi
}
