#!/usr/bin/env bash
# Prints the path of a real photograph with camera data, for trying things out and for tests.
#
# usage: tests/sample_photo.sh [with-packet|without-packet]
#
# The photographs come from a Debian package of wallpapers, which is fetched once and taken apart
# without being installed; they are kept in the user's cache folder. with-packet (the default) has
# an XMP packet of another program in it, without-packet has none.
set -euo pipefail

package=mate-backgrounds
folder=usr/share/backgrounds/mate/nature

fail() {
    echo "sample_photo.sh: $*" >&2
    exit 1
}

case "${1:-with-packet}" in
    with-packet) name=Blinds.jpg ;;
    without-packet) name=Storm.jpg ;;
    *) fail "unknown choice \"$1\"; it is with-packet or without-packet" ;;
esac

cache=${XDG_CACHE_HOME:-}
if [ -z "$cache" ]; then
    [ -n "${HOME:-}" ] || fail "neither HOME nor XDG_CACHE_HOME is set"
    cache=$HOME/.cache
fi
cache=$cache/kivmetadataapi
mkdir -p "$cache" || fail "cannot make the folder $cache"

# A photograph of a camera: a JPEG file with an Exif segment near its beginning.
is_photo() {
    [ -s "$1" ] && [ "$(od -An -tx1 -N3 "$1" | tr -d ' \n')" = ffd8ff ] &&
        [ "$(head -c 64 "$1" | grep -ac Exif)" != 0 ]
}

if is_photo "$cache/$name"; then
    echo "$cache/$name"
    exit 0
fi

# Everything is made in a folder of its own and moved, so that a run that is stopped leaves nothing
# half done, and two at once do no harm.
work=$(mktemp -d "$cache/fetch.XXXXXX")
trap 'rm -rf "$work"' EXIT

if [ -f "/$folder/$name" ]; then
    cp "/$folder/$name" "$work/$name"
else
    for tool in apt-get dpkg-deb tar; do
        command -v "$tool" >/dev/null || fail "$tool is missing; the photo is in the Debian package $package"
    done
    echo "Fetching the sample photo (Debian package $package, about 47 MB) ..." >&2
    options=(-qq -o Acquire::Retries=1 -o Acquire::http::Timeout=30)
    # apt would fetch as a user of its own, who cannot write to a home folder.
    [ "$(id -u)" != 0 ] || options+=(-o APT::Sandbox::User=root)
    download() {
        (cd "$work" && apt-get "${options[@]}" download "$package") >"$work/log" 2>&1
    }
    # Missing or outdated package lists are the one thing that can be mended, by root.
    if ! download && ! { [ "$(id -u)" = 0 ] && apt-get "${options[@]}" update >/dev/null 2>&1 &&
        download; }; then
        tail -n 3 "$work/log" >&2
        fail "cannot fetch the Debian package $package; is this machine offline?" \
            "(A photo of yours, saved as $cache/$name, does as well.)"
    fi
    dpkg-deb --fsys-tarfile "$work/$package"_*.deb | tar -x -C "$work" "./$folder/Blinds.jpg" \
        "./$folder/Storm.jpg" || fail "the package $package does not hold $folder/$name"
    for photo in Blinds.jpg Storm.jpg; do
        mv "$work/$folder/$photo" "$work/$photo"
    done
fi

is_photo "$work/$name" || fail "$name is not the photograph that was expected"
for photo in "$work"/*.jpg; do
    chmod 644 "$photo"
    mv -f "$photo" "$cache/"
done
echo "$cache/$name"
