#!/usr/bin/env bash
# Takes pictures of every view of the dialog in several languages, scales and brightnesses, of a photo
# with all of its metadata in the packet and of one with all of it derived, to look at before a change
# of its looks is called done.
#
# usage: scripts/screenshots.sh [BIN_DIR]     (default build/release/bin)
# Pictures and one contact sheet for each language land in out/screenshots.
# KIV_LANGUAGES, KIV_SCALES, KIV_BRIGHTNESSES and KIV_VIEWS narrow the choice.
set -euo pipefail
if [ -z "${DISPLAY-}" ]; then
    exec "$(dirname "$0")/../tests/with_display.sh" --size 2400x1700 "$0" "$@"
fi
. "$(dirname "$0")/common.sh"
cd "$top"
bin="$(realpath "${1:-build/release/bin}")"
out="$top/out/screenshots"
mkdir -p "$out"

read -ra languages <<< "${KIV_LANGUAGES:-en_US de_DE ja_JP}"
read -ra scales <<< "${KIV_SCALES:-1 1.5 2}"
read -ra brightnesses <<< "${KIV_BRIGHTNESSES:-0 25 50 75 100}"
read -ra views <<< "${KIV_VIEWS:-description origin rights iptc dublin-core camera all-properties}"

photo="$out/photo.xmp"
cp tests/full_packet.xmp "$photo"
# A photo of no more than its markers, which has nothing but what the sidecar beside it tells.
derived="$out/derived.jpg"
printf '\377\330\377\332\0\2\377\331' > "$derived"
cp tests/full_packet.xmp "$derived.xmp"
KIV_PREF_DIR="$(mktemp -d)"
export KIV_PREF_DIR
trap 'rm -rf "$KIV_PREF_DIR"' EXIT

for language in "${languages[@]}"; do
    for scale in "${scales[@]}"; do
        for brightness in "${brightnesses[@]}"; do
            for view in "${views[@]}"; do
                for file in "$photo" "$derived"; do
                    picture="$out/$language-$scale-$brightness-$view-$(basename "${file%.*}").png"
                    "$bin/kivhost" --language "$language" --scale "$scale" \
                        --brightness "$brightness" --view "$view" --text "DSC_0417.jpg" \
                        --screenshot "$picture" --auto cancel "$file" > /dev/null 2> "$out/words" ||
                        [ $? -eq 2 ] || fail "no picture of $view in $language: $(cat "$out/words")"
                done
            done
        done
    done
    if command -v montage > /dev/null; then
        montage "$out/$language"-*.png -geometry 880x640+8+8 -tile 4x "$out/sheet-$language.png"
    fi
    say "$language: $(find "$out" -name "$language-*.png" | wc -l) pictures"
done
say "look at $out"
