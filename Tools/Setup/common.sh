# shellcheck shell=bash
#
# What the set-up scripts share: messages, logs, the lock, the disk space.
#
# Expects `set -euo pipefail` and `root`, the absolute path of the tree. Everything is said on
# standard error, so that standard output belongs to the program that is started in the end.
# A function that fails has said why and ends the script.
: "${root:?}"

# Says each argument on a line of its own.
say() {
    printf '%s\n' "$@" >&2
}

fail() {
    end_progress
    say "错误：$*"
    exit 1
}

is_interactive() {
    [[ -t 2 && ${CI:-} != true ]]
}

# Shows a line that the next one overwrites, where a person is looking.
progress() {
    if is_interactive; then
        printf '\r\033[K%s' "$*" >&2
    fi
}

end_progress() {
    if is_interactive; then
        printf '\r\033[K' >&2
    fi
}

# Prints the path of the log called NAME, emptied.
new_log() {
    local log="$root/build/log/$1.log"
    if ! { { [[ -d ${log%/*} ]] || mkdir -p "${log%/*}"; } && : >"$log"; } 2>/dev/null; then
        fail "无法写入 $log，请检查目录权限和磁盘空间。"
    fi
    printf '%s' "$log"
}

# Whether a log tells of a full disk. Programs are to be run with LC_ALL=C to be understood here.
log_shows_full_disk() {
    grep -qE 'No space left on device|ENOSPC|enough free space|disk quota exceeded' "$1"
}

# require_space DIRECTORY MEGABYTES PURPOSE
require_space() {
    local free
    free=$(df -m --output=avail "$1" | tail -n 1)
    if ((free < $2)); then
        fail "磁盘空间不足：$3需要约 $2 MB，而 $1 所在的磁盘只剩 ${free// /} MB。"
    fi
}

# Keeps a second set-up in this tree waiting until `unlock_setup` or the end of this script.
lock_setup() {
    if ! { { [[ -d $root/build ]] || mkdir "$root/build"; } && : >>"$root/build/setup.lock"; } 2>/dev/null; then
        fail "无法写入 $root/build，请检查目录权限和磁盘空间。"
    fi
    exec {setup_lock}<"$root/build/setup.lock"
    if ! flock --nonblock "$setup_lock"; then
        say "另一个终端正在准备 Tavik，等待它完成……"
        flock "$setup_lock"
    fi
}

unlock_setup() {
    exec {setup_lock}<&-
}
