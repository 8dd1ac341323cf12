# Shared by the scripts: messages, packages, builds, and a display of their own. Sourced, not run.
# shellcheck shell=bash

readonly top="$(cd "$(dirname "${BASH_SOURCE[0]}")/.." && pwd)"
jobs="$(nproc)"
readonly jobs
export CCACHE_BASEDIR="$top" CCACHE_NOHASHDIR=1

say() { printf '== %s\n' "$*"; }
fail() { printf '%s: %s\n' "${0##*/}" "$*" >&2; exit 1; }

# "[2/5] text (12 s so far)": how far a script is. Set step_count first.
step_now=0
step_start=$SECONDS
step() {
    step_now=$((step_now + 1))
    printf '\n== [%d/%d] %s (%d s so far)\n' "$step_now" "$step_count" "$1" $((SECONDS - step_start))
}

# Packages of Debian 12, by what they are for.
readonly packages_run="g++ cmake ninja-build ccache pkg-config libagg-dev libexpat1-dev libexiv2-dev
    libboost-dev zlib1g-dev libpng-dev libwxgtk3.2-dev libgtk-3-dev xvfb xauth openbox
    fonts-dejavu-core imagemagick python3"
readonly packages_test="libgtest-dev libgmock-dev exiv2 libimage-exiftool-perl xdotool
    fonts-noto-cjk util-linux binutils libgettextpo-dev strace"
readonly packages_windows="g++-mingw-w64-x86-64-posix libz-mingw-w64-dev googletest wine64 libwine patch
    xz-utils debian-archive-keyring"
readonly packages_all="git clang clang-format clang-tidy libclang-rt-14-dev libbenchmark-dev"

# need_packages NAME...: installs what is missing.
need_packages() {
    command -v dpkg-query > /dev/null || fail "this script sets up Debian 12; elsewhere install: $*"
    local name missing=()
    for name in "$@"; do
        [ "$(dpkg-query -W -f '${db:Status-Status}' "$name" 2> /dev/null)" = installed ] ||
            missing+=("$name")
    done
    [ ${#missing[@]} -eq 0 ] && return
    local as_root=()
    if [ "$(id -u)" -ne 0 ]; then
        command -v sudo > /dev/null || fail "missing packages, and neither root nor sudo: ${missing[*]}"
        as_root=(sudo)
    fi
    say "installing ${#missing[@]} packages: ${missing[*]}"
    local log
    log="$(mktemp)"
    if ! { "${as_root[@]}" apt-get update &&
        DEBIAN_FRONTEND=noninteractive "${as_root[@]}" apt-get install -y --no-install-recommends \
            "${missing[@]}"; } > "$log" 2>&1; then
        tail -n 20 "$log" >&2
        fail "the packages could not be installed"
    fi
    rm -f "$log"
}

# build PRESET [TARGET...]: configures when needed and builds, with ninja's own progress.
build() {
    local preset="$1"
    shift
    if [ ! -e "$top/build/$preset/build.ninja" ]; then
        (cd "$top" && cmake --preset "$preset" > "$top/build-$preset.log" 2>&1) ||
            { cat "$top/build-$preset.log" >&2; rm -f "$top/build-$preset.log"; fail "configuring failed"; }
        rm -f "$top/build-$preset.log"
    fi
    (cd "$top" && NINJA_STATUS='[%f/%t, %es] ' cmake --build --preset "$preset" -j "$jobs" \
        ${1:+--target "$@"})
}
