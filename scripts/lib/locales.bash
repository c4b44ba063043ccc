# shellcheck shell=bash
# Compiles the locales of the tests without changing the system. Sourced, not run.

# Name, language definition, character set.
readonly locale_table="
sv_SE.UTF-8       sv_SE UTF-8
tr_TR.UTF-8       tr_TR UTF-8
de_DE.ISO-8859-1  de_DE ISO-8859-1
ja_JP.EUC-JP      ja_JP EUC-JP
"

# Compiles the locales that are missing in the folder. Several processes may call it at once.
ensure_locales() (
    local folder=$1 name definition charset
    mkdir -p "$folder"
    exec 9>"$folder/.lock"
    flock 9
    while read -r name definition charset; do
        [[ -z $name || -e $folder/$name/LC_CTYPE ]] && continue
        rm -rf "${folder:?}/$name.new"
        # If the character set lacks characters, localedef warns and exits with status 1, but writes the locale.
        localedef --no-archive -i "$definition" -f "$charset" "$folder/$name.new" >"$folder/.log" 2>&1 || true
        if [[ ! -e $folder/$name.new/LC_CTYPE ]]; then
            cat "$folder/.log" >&2
            return 1
        fi
        mv "$folder/$name.new" "$folder/$name"
    done <<<"$locale_table"
)
