# shellcheck shell=bash
#
# Configures and builds a preset. Follows common.sh.
: "${root:?}"

build_megabytes=500

# What the programs that build and test are started with.
launcher=()

# build_preset PRESET. Silent when there is nothing to do.
build_preset() {
    local directory="$root/build/$1" log
    log=$(new_log "build-$1")
    if [[ ! -d $directory/bin ]]; then
        require_space "$root" "$build_megabytes" "编译"
    fi
    configure_preset "$1" "$log"
    if ! run_ninja "$directory" "$log" | show_ninja "$1" "$log"; then
        build_failed "编译没有成功" "$log"
    fi
    end_progress
}

# Ninja itself configures again after a change in a CMakeLists.txt, but not after one in the
# presets; and a build directory that was moved along with its tree cannot be used any more.
configure_preset() {
    local directory="$root/build/$1" log=$2
    local -a fresh=()
    if [[ -f $directory/CMakeCache.txt ]] &&
        ! grep -qxF "CMAKE_HOME_DIRECTORY:INTERNAL=$root" "$directory/CMakeCache.txt"; then
        fresh=(--fresh)
    elif [[ $directory/build.ninja -nt $root/CMakePresets.json ]]; then
        return
    fi
    progress "正在配置 Tavik（$1）……"
    if ! (cd "$root" && LC_ALL=C cmake --preset "$1" "${fresh[@]}") </dev/null &>>"$log"; then
        build_failed "配置没有成功" "$log"
    fi
    # CMake leaves the file untouched when its content stays the same.
    touch "$directory/build.ninja"
}

run_ninja() {
    "${launcher[@]}" env LC_ALL=C NINJA_STATUS='[%f/%t] ' ninja -C "$1" </dev/null 2>&1
}

# show_ninja PRESET LOG
show_ninja() {
    local line announced=
    while IFS= read -r line; do
        printf '%s\n' "$line" >>"$2"
        if [[ $line =~ ^\[([0-9]+/[0-9]+)\] ]]; then
            if [[ -z $announced ]] && ! is_interactive; then
                say "正在编译 Tavik（$1）……"
            fi
            announced=yes
            progress "正在编译 Tavik（$1）：${BASH_REMATCH[1]}"
        fi
    done
}

build_failed() {
    end_progress
    # Without the steps that went well.
    grep -vE '^\[[0-9]+/[0-9]+\] ' "$2" | tail -n 40 >&2 || true
    if log_shows_full_disk "$2"; then
        fail "$1：磁盘空间不足。完整日志：$2"
    elif grep -q 'Killed signal terminated program' "$2"; then
        fail "$1：内存不足，编译器被系统终止。完整日志：$2"
    fi
    fail "$1，原因见上面的日志。完整日志：$2"
}
