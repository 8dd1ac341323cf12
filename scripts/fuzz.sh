#!/usr/bin/env bash
# Builds every fuzzer and runs each for a while on its seeds, as many at a time as there are cores.
# usage: scripts/fuzz.sh [SECONDS]
set -euo pipefail
. "$(dirname "$0")/common.sh"
cd "$top"
seconds="${1:-20}"

# fuzz NAME: one fuzzer; says how it went.
fuzz() {
    local name="$1" log="build/fuzz/$1.log" corpus="build/fuzz/corpus/$1"
    mkdir -p "$corpus"
    local options=(-max_total_time="$seconds" -timeout=20 -rss_limit_mb=4096 -print_final_stats=1
        -artifact_prefix="build/fuzz/$name-")
    [ -e "fuzz/$name.dict" ] && options+=(-dict="fuzz/$name.dict")
    if "build/fuzz/bin/$name" "${options[@]}" "$corpus" "fuzz/seeds/$name" > "$log" 2>&1; then
        say "$name: $(sed -n 's/^stat::number_of_executed_units: *//p' "$log") inputs, clean"
    else
        tail -n 40 "$log"
        say "$name: FAILED, see $log"
        return 1
    fi
}

build fuzz
passed=0
failed=0
running=0
finish_one() {
    if wait -n; then passed=$((passed + 1)); else failed=$((failed + 1)); fi
    running=$((running - 1))
}
for source in fuzz/*Fuzzer.cpp; do
    [ "$running" -lt "$jobs" ] || finish_one
    fuzz "$(basename "$source" .cpp)" &
    running=$((running + 1))
done
while [ "$running" -gt 0 ]; do finish_one; done
echo "fuzzers: $passed passed, $failed failed"
[ "$failed" -eq 0 ]
