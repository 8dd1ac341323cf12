#!/usr/bin/env bash
# Builds the libraries that the Windows build needs and Debian does not package for it, from Debian's
# source packages: each once, kept in the user's cache folder under a hash of its recipe. Then tells
# the build where they lie (build/windows-libraries.cmake).
#
# usage: scripts/windows_deps.sh
#
# The first run takes about 5 minutes on 2 cores, nearly all of it for wxWidgets; a later run takes
# less than a second. The cache may be deleted at any time. Missing Debian packages are installed.
set -euo pipefail
. "$(dirname "$0")/common.sh"
[ $# -eq 0 ] || { sed -n '2,9s/^# \{0,1\}//p' "$0"; exit 0; }

cache="${XDG_CACHE_HOME:-${HOME:?neither HOME nor XDG_CACHE_HOME is set}/.cache}"
readonly cache="$cache/kivmetadataapi/windows"
readonly toolchain="$top/cmake/toolchains/windows.cmake"
readonly list="$top/build/windows-libraries.cmake"
readonly compiler=x86_64-w64-mingw32-g++-posix

# shellcheck disable=SC2086
need_packages cmake ninja-build libagg-dev libboost-dev $packages_windows

# --- recipes ---------------------------------------------------------------------------------------
# build_NAME gets the folders $source (the unpacked source package), $work (its own, thrown away) and
# $prefix (what is kept). With package_NAME, version_NAME is the version of that source package.

readonly libraries="agg boost exiv2 expat googletest png wxwidgets"

# The compiler must not see all of /usr/include: folders with a link to nothing but these headers.
version_agg="$(dpkg-query -W -f '${Version}' libagg-dev)"
time_agg="no time"
build_agg() {
    mkdir -p "$prefix/include"
    ln -s /usr/include/agg2 "$prefix/include/agg2"
}

version_boost="$(dpkg-query -W -f '${Version}' libboost-dev)"
time_boost="no time"
build_boost() {
    mkdir -p "$prefix/include"
    ln -s /usr/include/boost "$prefix/include/boost"
}

# Only the decoders of Exif and IIM are used. Static, so that it goes into one DLL of ours.
package_exiv2=exiv2
version_exiv2=0.27.6-1
time_exiv2="a minute"
build_exiv2() {
    local flags="-w -ffile-prefix-map=$source=exiv2"
    cmake_build "$source" -DCMAKE_CXX_FLAGS="$flags" -DBUILD_SHARED_LIBS=OFF \
        -DEXIV2_ENABLE_XMP=OFF -DEXIV2_ENABLE_PNG=OFF -DEXIV2_ENABLE_NLS=OFF \
        -DEXIV2_ENABLE_BMFF=OFF -DEXIV2_ENABLE_VIDEO=OFF -DEXIV2_ENABLE_WEBREADY=OFF \
        -DEXIV2_ENABLE_CURL=OFF -DEXIV2_ENABLE_SSH=OFF -DEXIV2_BUILD_SAMPLES=OFF \
        -DEXIV2_BUILD_EXIV2_COMMAND=OFF -DEXIV2_BUILD_UNIT_TESTS=OFF -DEXIV2_BUILD_DOC=OFF
    keep_licence "$source/COPYING" exiv2.txt
}

package_expat=expat
version_expat=2.5.0-1+deb12u2
time_expat="10 seconds"
build_expat() {
    # Defined to nothing it does not compile for Windows.
    sed -i 's/^#cmakedefine XML_DTD$/#cmakedefine XML_DTD 1/' "$source/expat/expat_config.h.cmake"
    cmake_build "$source/expat" -DEXPAT_SHARED_LIBS=OFF -DEXPAT_BUILD_TOOLS=OFF \
        -DEXPAT_BUILD_EXAMPLES=OFF -DEXPAT_BUILD_TESTS=OFF -DEXPAT_BUILD_DOCS=OFF
    keep_licence "$source/expat/COPYING" expat.txt
}

# Its sources are a package of their own.
version_googletest="$(dpkg-query -W -f '${Version}' googletest)"
time_googletest="15 seconds"
build_googletest() {
    cmake_build /usr/src/googletest -DCMAKE_CXX_STANDARD=20
}

# Needs zlib, which Debian packages for Windows.
package_png=libpng1.6
version_png=1.6.39-2+deb12u5
time_png="10 seconds"
build_png() {
    cmake_build "$source" -DPNG_SHARED=OFF -DPNG_EXECUTABLES=OFF -DPNG_TESTS=OFF
    keep_licence "$source/LICENSE" libpng.txt
}

# Everything off but what the dialog uses and what that in turn needs.
package_wxwidgets=wxwidgets3.2
version_wxwidgets=3.2.2+dfsg-2
time_wxwidgets="4 minutes"
build_wxwidgets() {
    local name options=(-DwxUSE_DPI_AWARE_MANIFEST=none)
    for name in $(cat "$source"/build/cmake/*.cmake | grep -oE 'wxUSE_[A-Z0-9_]+' | sort -u); do
        case "$name" in
            wxUSE_DPI_AWARE_MANIFEST* | *_DEFAULT | wxUSE_STD_CONTAINERS) ;;
            *) options+=("-D$name=OFF") ;;
        esac
    done
    for name in UNICODE GUI COMPILER_TLS EXCEPTIONS THREADS UNSAFE_WXSTRING_CONV REPRODUCIBLE_BUILD \
        ANY BASE64 CONSOLE_EVENTLOOP DATETIME DYNAMIC_LOADER DYNLIB_CLASS FFILE FILE FONTMAP \
        GEOMETRY INTL LOG LONGLONG PRINTF_POS_PARAMS REGKEY STDPATHS STOPWATCH STREAMS \
        SYSTEM_OPTIONS TEXTBUFFER TEXTFILE TIMER VARIANT XLOCALE \
        ACCEL ACCESSIBILITY BUTTON CARET CLIPBOARD CONTROLS DATAOBJ DC_CACHEING DISPLAY FONTENUM \
        GRAPHICS_CONTEXT ICO_CUR IMAGE IMAGLIST MENUBAR MENUS MOUSEWHEEL MSGDLG OLE OWNER_DRAWN \
        PALETTE POPUPWIN RICHEDIT RICHEDIT2 SCROLLBAR STATBMP STATTEXT STATUSBAR TEXTCTRL TOOLTIPS \
        UXTHEME VALIDATORS WXDIB; do
        options+=("-DwxUSE_$name=ON")
    done
    # No folder of this machine gets into the DLL or its headers.
    sed -i 's|^set(wxINSTALL_PREFIX .*|set(wxINSTALL_PREFIX "")|' "$source/build/cmake/setup.cmake"
    # Its own warnings are its makers' business. Optimized lightly: the time goes into the system.
    local flags="-w -ffile-prefix-map=$source=wxWidgets"
    cmake_build "$source" -DCMAKE_CXX_FLAGS="$flags" -DCMAKE_C_FLAGS="$flags" \
        -DCMAKE_CXX_FLAGS_RELEASE="-O1 -DNDEBUG" -DwxBUILD_CXX_STANDARD=17 \
        -DwxBUILD_SHARED=ON -DwxBUILD_MONOLITHIC=ON -DwxBUILD_PRECOMP=ON -DwxBUILD_DEBUG_LEVEL=0 \
        -DwxBUILD_VENDOR=kiv "${options[@]}"
    keep_licence "$source/docs/licence.txt" wxWidgets.txt
    keep_licence "$source/docs/lgpl.txt" wxWidgets-lgpl.txt
}

# What the recipes share, and thus part of each.
cmake_build() {
    local from="$1"
    shift
    cmake -G Ninja -S "$from" -B "$work/build" -DCMAKE_TOOLCHAIN_FILE="$toolchain" \
        -DKIV_WINDOWS_NO_LIBRARIES=ON -DCMAKE_BUILD_TYPE=Release \
        -DCMAKE_C_FLAGS_RELEASE="-O2 -DNDEBUG" -DCMAKE_CXX_FLAGS_RELEASE="-O2 -DNDEBUG" \
        -DCMAKE_INSTALL_PREFIX="$prefix" -DCMAKE_INSTALL_LIBDIR=lib "$@"
    cmake --build "$work/build" -j "$jobs"
    cmake --install "$work/build" --strip
}
keep_licence() {
    mkdir -p "$prefix/licences"
    cp "$1" "$prefix/licences/$2"
}

# --- source packages -------------------------------------------------------------------------------

# An apt of our own: the machine's settings need no source entries, and are not touched. Its index is
# verified by apt against Debian's key, and the packages against the index.
apt_options=()
apt_own() {
    local state="$cache/apt" uri release component found=no
    mkdir -p "$state/lists/partial" "$state/archives/partial"
    : > "$state/sources.list"
    # The mirror that the machine uses, where it uses one.
    while read -r uri release component; do
        [ "$release" = bookworm ] && [ "$component" = main ] || continue
        found=yes
        apt_source "$uri" >> "$state/sources.list"
    done < <(apt-get indextargets --format '$(REPO_URI) $(RELEASE) $(COMPONENT)' | sort -u)
    [ "$found" = yes ] || apt_source http://deb.debian.org/debian > "$state/sources.list"
    apt_options=(
        -o Dir::Etc::sourcelist="$state/sources.list" -o Dir::Etc::sourceparts=-
        -o Dir::State::lists="$state/lists" -o Dir::Cache="$state"
        -o Dir::Cache::archives="$state/archives" -o APT::Sandbox::User="$(id -un)"
        -o Acquire::Retries=2 -o Acquire::http::Timeout=30)
    apt-get "${apt_options[@]}" update > "$cache/logs/apt.log" 2>&1 || {
        tail -n 20 "$cache/logs/apt.log" >&2
        fail "Debian's list of source packages could not be had (see above)"
    }
}
apt_source() {
    echo "deb-src [signed-by=/usr/share/keyrings/debian-archive-keyring.gpg] $1 bookworm main"
}

# fetch PACKAGE VERSION: the source package, kept in $cache/sources/PACKAGE_VERSION.
fetch() {
    local package="$1" version="$2" folder="$cache/sources/$1_$2" log="$cache/logs/$1-download.log"
    [ -d "$folder" ] && return
    [ ${#apt_options[@]} -gt 0 ] || apt_own
    local attempt note
    : > "$log"
    # Now and then a mirror lacks a file of Debian's changes, and an archive moves on.
    for attempt in "$package=$version" "$package=$version --tar-only" "$package" \
        "$package --tar-only"; do
        rm -rf "$work/download"
        mkdir -p "$work/download"
        # shellcheck disable=SC2086
        if (cd "$work/download" &&
            apt-get "${apt_options[@]}" source --download-only $attempt) >> "$log" 2>&1; then
            break
        fi
        printf '%s: could not be downloaded: %s\n' "${0##*/}" "$attempt" >&2
        attempt=""
    done
    if [ -z "$attempt" ]; then
        tail -n 20 "$log" >&2
        fail "no source package $package could be had, neither $version nor another (log: $log)"
    fi
    note="$(cd "$work/download" && printf '%s ' *)"
    [ "$attempt" = "$package=$version" ] || say "$package: instead of $version, taken: $note"
    mkdir -p "$cache/sources"
    mv "$work/download" "$folder"
}

# unpack PACKAGE VERSION: into $source, with Debian's changes where they came.
unpack() {
    local folder="$cache/sources/$1_$2" patch
    mkdir -p "$source" "$prefix/licences"
    { echo "Built from these files of Debian's source package $1:"; (cd "$folder" && ls); } \
        > "$prefix/licences/$1-sources.txt"
    tar -xf "$folder"/*.orig.tar.* -C "$source" --strip-components=1
    local changes=("$folder"/*.debian.tar.*)
    [ -e "${changes[0]}" ] || return 0
    tar -xf "${changes[0]}" -C "$source"
    while read -r patch; do
        (cd "$source" && patch -p1 --no-backup-if-mismatch < "debian/patches/$patch")
    done < <(sed '/^#/d; /^[[:space:]]*$/d' "$source/debian/patches/series")
}

# --- building --------------------------------------------------------------------------------------

# hash NAME: of everything that decides about the result.
hash_of() {
    local version="version_$1" package="package_$1"
    {
        declare -f "build_$1" cmake_build keep_licence
        [ -z "${!package-}" ] || declare -f unpack
        echo "${!package-} ${!version} $compiler_version"
    } | sha256sum | cut -c 1-12
}

# build_library NAME FOLDER
build_library() {
    local name="$1" folder="$2" version="version_$1" package="package_$1" takes="time_$1"
    local log="$cache/logs/$name.log" start=$SECONDS
    work="$(mktemp -d "$cache/work.XXXXXX")"
    source="$work/source"
    prefix="$work/prefix"
    say "building $name ${!version} (about ${!takes} on 2 cores; log: $log)"
    [ -z "${!package-}" ] || fetch "${!package}" "${!version}"
    # In the background and waited for, because a failure inside `if (...)` would not end the shell;
    # as a group of processes, so that it can be ended as one.
    set -m
    (
        set -e
        exec > "$log" 2>&1 < /dev/null
        [ -z "${!package-}" ] || unpack "${!package}" "${!version}"
        "build_$name"
    ) &
    builder=$!
    set +m
    if ! wait "$builder"; then
        builder=""
        tail -n 40 "$log" >&2
        fail "building $name failed; above are the last lines of $log"
    fi
    builder=""
    mv "$prefix" "$folder"
    rm -rf "$work"
    say "$name is built ($((SECONDS - start)) s)"
}

compiler_version="$("$compiler" --version | head -n 1)" ||
    fail "the compiler $compiler is missing (package g++-mingw-w64-x86-64-posix)"
mkdir -p "$cache/logs" "${list%/*}"
exec 9> "$cache/lock"
if ! flock --nonblock 9; then
    say "waiting for another run of this script"
    flock 9
fi

missing=()
prefixes=()
for name in $libraries; do
    version="version_$name"
    folder="$cache/$name-$(tr '+~' '__' <<< "${!version}")-$(hash_of "$name")"
    prefixes+=("$name=$folder")
    [ -d "$folder" ] || missing+=("$name=$folder")
done
work=""
builder=""
cleanup() {
    if [ -n "$builder" ]; then
        kill -TERM -- "-$builder" 2> /dev/null || true
        wait "$builder" 2> /dev/null || true
    fi
    [ -z "$work" ] || rm -rf "$work"
}
trap cleanup EXIT
trap 'exit 130' INT
trap 'exit 143' TERM
if [ ${#missing[@]} -gt 0 ]; then
    rm -rf "$cache"/work.*
    for entry in "${missing[@]}"; do
        build_library "${entry%%=*}" "${entry#*=}"
    done
fi

{
    echo "# Written by scripts/windows_deps.sh."
    for entry in "${prefixes[@]}"; do
        printf 'set(KIV_WINDOWS_%s "%s")\n' "$(tr '[:lower:]' '[:upper:]' <<< "${entry%%=*}")" \
            "${entry#*=}"
    done
    printf 'set(KIV_WINDOWS_PREFIXES'
    printf ' "%s"' "${prefixes[@]#*=}"
    printf ')\n'
} > "$list.new"
if cmp -s "$list.new" "$list"; then rm "$list.new"; else mv "$list.new" "$list"; fi
say "libraries for Windows: ready in $cache ($SECONDS s)"
