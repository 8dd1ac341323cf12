#!/usr/bin/env bash
# Format and lint checks. usage: scripts/lint.sh [BUILD_DIR...]   (default build/debug)
set -euo pipefail
. "$(dirname "$0")/common.sh"
cd "$top"

status=0
mapfile -t sources < <(git ls-files '*.cpp' '*.h' '*.c')
[ ${#sources[@]} -gt 0 ] || fail "git lists no sources here"
if clang-format --dry-run -Werror "${sources[@]}"; then
    say "clang-format: ${#sources[@]} files are formatted"
else
    status=1
fi
[ $# -gt 0 ] || set -- build/debug
for build in "$@"; do
    python3 scripts/tidy.py "$build" || status=1
done
exit "$status"
