#!/usr/bin/env bash
# Builds every fuzzer and runs each for a while on its seeds. usage: scripts/fuzz.sh [SECONDS]
set -euo pipefail
. "$(dirname "$0")/common.sh"
cd "$top"
seconds="${1:-20}"

build fuzz
passed=0
failed=0
for source in fuzz/*Fuzzer.cpp; do
    name="$(basename "$source" .cpp)"
    corpus="build/fuzz/corpus/$name"
    mkdir -p "$corpus"
    options=(-max_total_time="$seconds" -timeout=20 -rss_limit_mb=4096 -print_final_stats=1
        -artifact_prefix="build/fuzz/$name-")
    [ -e "fuzz/$name.dict" ] && options+=(-dict="fuzz/$name.dict")
    if "build/fuzz/bin/$name" "${options[@]}" "$corpus" "fuzz/seeds/$name" \
        > "build/fuzz/$name.log" 2>&1; then
        passed=$((passed + 1))
        say "$name: $(sed -n 's/^stat::number_of_executed_units: *//p' "build/fuzz/$name.log") inputs, clean"
    else
        failed=$((failed + 1))
        tail -n 40 "build/fuzz/$name.log"
        say "$name: FAILED, see build/fuzz/$name.log"
    fi
done
echo "fuzzers: $passed passed, $failed failed"
[ "$failed" -eq 0 ]
