#!/usr/bin/env bash
# Runs a Windows program under Wine. The exit status is the program's.
#
# usage: scripts/wine.sh PROGRAM [ARGUMENT...]
#        scripts/wine.sh --together COMMAND [ARGUMENT...]  many runs in one Windows of their own
#        scripts/wine.sh --end                             ends what still runs of ours
#
# Each run finds a Windows installation (a "prefix") in the user's cache folder, made at the first
# use. Programs without a display share one. With a display each run takes one that no other uses:
# windows of one installation share the focus, and they live on one display. With --together all
# programs that COMMAND starts share one, also at the same time. Where WINEPREFIX is set, that one is
# used, and made if it is missing.
#
# Nothing is written into the home folder, and no dialog of Wine's own comes up. Linux paths can be
# given as they are, or behind "Z:".
set -eu

readonly recipe=3 # goes up when the installation is made differently

fail() { printf 'wine.sh: %s\n' "$*" >&2; exit 126; }

for wine in "$(command -v wine64 || true)" /usr/lib/wine/wine64; do
    [ ! -x "$wine" ] || break
done
[ -x "$wine" ] || fail "Wine is missing; on Debian 12: apt-get install wine64"
server="$(command -v wineserver || true)"
[ -n "$server" ] || server="$(dirname "$wine")/wineserver"

export WINEDEBUG="${WINEDEBUG--all}"
# No downloads of .NET and of a browser, no entries in the menus of the desktop.
export WINEDLLOVERRIDES="mscoree=;mshtml=;winemenubuilder.exe=d"
# File names in UTF-8, and messages in English, wherever this runs.
export LC_ALL=C.UTF-8

cache="${XDG_CACHE_HOME-}"
[ -n "$cache" ] || cache="$HOME/.cache"
root="$cache/kivmetadataapi/windows/wine/$("$wine" --version | tr -c 'A-Za-z0-9.\n' - |
    cut -c 1-20)-$recipe"

# make_prefix FOLDER: a fresh installation, without links into the home folder.
make_prefix() {
    local log="$1.log" entry
    mkdir -p "$1/home"
    if ! env -u DISPLAY HOME="$1/home" WINEPREFIX="$1" "$wine" wineboot -i < /dev/null > "$log" 2>&1 ||
        ! WINEPREFIX="$1" "$server" -w; then
        cat "$log" >&2
        fail "Wine could not set up $1"
    fi
    for entry in "$1"/drive_c/users/*/*; do
        if [ -L "$entry" ]; then
            rm "$entry"
            mkdir "$entry"
        fi
    done
    write_settings > "$1/drive_c/settings.reg"
    if ! env -u DISPLAY WINEPREFIX="$1" "$wine" regedit /S 'C:\settings.reg' < /dev/null >> "$log" 2>&1 ||
        ! WINEPREFIX="$1" "$server" -w; then
        cat "$log" >&2
        fail "Wine does not take its settings"
    fi
    rm "$log"
}

# A font of the system's packages takes the place of those that Windows has: one with Japanese in
# itself, since Wine's text fields do not borrow letters from another font. A program that crashes
# says where, without a dialog.
write_settings() {
    local name
    printf 'REGEDIT4\n\n[HKEY_CURRENT_USER\\Software\\Wine\\WineDbg]\n"ShowCrashDialog"=dword:0\n'
    printf '\n[HKEY_CURRENT_USER\\Software\\Wine\\Fonts\\Replacements]\n'
    for name in Tahoma "Segoe UI" "MS Shell Dlg" "MS Shell Dlg 2" "MS Sans Serif" \
        "Microsoft Sans Serif" Arial "MS UI Gothic" "MS Gothic" "MS PGothic" "Yu Gothic UI" Meiryo; do
        printf '"%s"="Noto Sans CJK JP"\n' "$name"
    done
    # The letters that it lacks come from another one. A list of texts: bytes, each text and the list
    # closed by a zero.
    printf '\n[HKEY_LOCAL_MACHINE\\Software\\Microsoft\\Windows NT\\CurrentVersion\\FontLink\\SystemLink]\n'
    for name in "Noto Sans CJK JP" Tahoma "Segoe UI" "MS Shell Dlg" "MS Shell Dlg 2" \
        "Microsoft Sans Serif" Arial "Yu Gothic UI"; do
        printf '"%s"=hex(7):' "$name"
        printf 'DejaVuSans.ttf,DejaVu Sans\0\0' | od -An -v -tx1 | tr -d '\n' | sed 's/^ //; s/ /,/g'
        printf '\n'
    done
}

# ensure_prefix: the one that the caller named.
ensure_prefix() {
    [ ! -e "$WINEPREFIX/system.reg" ] || return 0
    mkdir -p "$WINEPREFIX"
    exec 8> "$WINEPREFIX.lock"
    flock 8
    [ -e "$WINEPREFIX/system.reg" ] || make_prefix "$WINEPREFIX" 8>&-
    exec 8>&-
}

# make_base: the installation that all others are copies of.
make_base() {
    [ ! -d "$root/base" ] || return 0
    mkdir -p "$root"
    exec 8> "$root/base.lock"
    flock 8
    if [ ! -d "$root/base" ]; then
        rm -rf "$root/base.new"
        make_prefix "$root/base.new" 8>&-
        mv "$root/base.new" "$root/base"
    fi
    exec 8>&-
}

# copy_base FOLDER: what lies under "windows" is never written to, so links do.
copy_base() {
    [ ! -d "$1" ] || return 0
    local new
    new="$(mktemp -d "$root/new.XXXXXX")"
    cp -al "$root/base/drive_c" "$new/"
    rm -rf "$new/drive_c/users"
    cp -a "$root/base/drive_c/users" "$new/drive_c/"
    cp -a "$root/base/dosdevices" "$root/base"/*.reg "$root/base/.update-timestamp" "$new/"
    # Another run may have been faster.
    mv -T "$new" "$1" 2> /dev/null || rm -rf "$new"
}

# take_prefix: one that no other run uses, locked by descriptor 9 until this script ends.
take_prefix() {
    local number
    for ((number = 1; ; ++number)); do
        exec 9> "$root/alone-$number.lock"
        if flock -n 9; then
            WINEPREFIX="$root/alone-$number"
            export WINEPREFIX
            copy_base "$WINEPREFIX" 9>&-
            return
        fi
        exec 9>&-
    done
}

end_prefix() { WINEPREFIX="$1" "$server" -k > /dev/null 2>&1 || true; }

# run COMMAND...: without the descriptors of this script, which what Wine leaves running would keep.
run() {
    local child status
    # A signal ends the command too, and what comes behind it is still done.
    trap 'kill -TERM "$child" 2> /dev/null' TERM INT HUP
    "$@" 7>&- 9>&- <&0 &
    child=$!
    status=0
    wait "$child" || status=$?
    if kill -0 "$child" 2> /dev/null; then
        wait "$child" || status=$?
    fi
    trap - TERM INT HUP
    return "$status"
}

# Starts what serves all programs of an installation. The first program would start it else, and hand
# its output down: whoever reads that would wait for as long as any program runs here. It stays for a
# minute behind the last program: Debian's ends at once, and may refuse the next one meanwhile.
start_prefix() {
    "$server" -p60 < /dev/null > /dev/null 2>&1 9>&- || true
    "$wine" rundll32.exe user32.dll,GetDesktopWindow < /dev/null > /dev/null 2>&1 9>&- || true
}

# A program that waits for input keeps the installation up, so that each of many runs starts at once.
# It ends with this script, and with the last program Wine does.
keep_prefix_up() {
    exec 7> >(exec "$wine" cmd.exe > /dev/null 2>&1 9>&-)
}

# run_together COMMAND...
run_together() {
    start_prefix
    keep_prefix_up
    run "$@"
}

# run_alone COMMAND...: in an installation of its own, which ends with it: the next run there may be
# on another display.
run_alone() {
    local status=0
    take_prefix
    "$@" || status=$?
    end_prefix "$WINEPREFIX"
    return "$status"
}

case "${1-}" in
    "" | -h | --help)
        sed -n '2,15s/^# \{0,1\}//p' "$0"
        [ $# -gt 0 ] || exit 64
        exit 0
        ;;
    --end)
        # Those in use are left alone.
        for prefix in "$root"/plain "$root"/alone-*; do
            [ -d "$prefix" ] || continue
            exec 9> "$prefix.lock"
            if flock -n 9; then
                end_prefix "$prefix" 9>&-
            fi
            exec 9>&-
        done
        exit 0
        ;;
    --together)
        shift
        status=0
        if [ -n "${WINEPREFIX-}" ]; then
            # Others may use it at the same time, so it is not ended here.
            ensure_prefix
            run_together "$@" || status=$?
        else
            make_base
            run_alone run_together "$@" || status=$?
        fi
        exit "$status"
        ;;
esac

if [ -n "${WINEPREFIX-}" ]; then
    ensure_prefix
    exec "$wine" "$@"
fi
make_base
status=0
if [ -n "${DISPLAY-}" ]; then
    run_alone run "$wine" "$@" || status=$?
    exit "$status"
fi
export WINEPREFIX="$root/plain"
copy_base "$WINEPREFIX"
exec 9> "$WINEPREFIX.start"
flock 9 # one after the other, also for those that run at the same time
start_prefix
exec 9> "$WINEPREFIX.lock"
flock -s 9
run "$wine" "$@" || status=$?
exit "$status"
