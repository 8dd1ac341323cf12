#!/usr/bin/env bash
# Runs a program on a display of its own, with a window manager, and ends both afterwards. The exit
# status is the program's.
#
# usage: tests/with_display.sh [--size WIDTHxHEIGHT] PROGRAM [ARGUMENT...]
set -u

size=1600x1200
if [ "${1-}" = --size ]; then
    size="$2"
    shift 2
fi
[ $# -gt 0 ] || { sed -n '2,5s/^# \{0,1\}//p' "$0" >&2; exit 64; }

work="$(mktemp -d)"
xvfb=""
manager=""
finish() {
    [ -z "$manager" ] || kill "$manager" 2> /dev/null
    [ -z "$xvfb" ] || kill "$xvfb" 2> /dev/null
    wait 2> /dev/null
    rm -rf "$work"
}
trap finish EXIT
trap 'exit 143' TERM
trap 'exit 130' INT

# The server picks a free number and says which, once it can be used.
Xvfb -displayfd 9 -screen 0 "${size}x24" -nolisten tcp -noreset 9> "$work/number" \
    > "$work/xvfb.log" 2>&1 &
xvfb=$!
for _ in $(seq 200); do
    [ -s "$work/number" ] && break
    kill -0 "$xvfb" 2> /dev/null || break
    sleep 0.05
done
number="$(tr -d '[:space:]' < "$work/number")"
if [ -z "$number" ]; then
    cat "$work/xvfb.log" >&2
    echo "with_display.sh: no display could be started" >&2
    exit 69
fi
export DISPLAY=":$number"

# Without a window manager the focus never arrives. Its settings are the package's own.
HOME="$work" XDG_CONFIG_HOME="$work" XDG_CACHE_HOME="$work" \
    openbox --sm-disable --startup "touch $work/ready" > "$work/openbox.log" 2>&1 &
manager=$!
for _ in $(seq 200); do
    [ -e "$work/ready" ] && break
    kill -0 "$manager" 2> /dev/null || break
    sleep 0.05
done

"$@"
