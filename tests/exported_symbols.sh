#!/usr/bin/env bash
# Holds what the shared library lets out against what it may: its five functions, nothing else.
#
# usage: tests/exported_symbols.sh LIBRARY
#        tests/exported_symbols.sh --without WORD LIBRARY   nothing with that word in its full name
#        tests/exported_symbols.sh --links-no WORD LIBRARY   needs no library with that word in its name
#        tests/exported_symbols.sh --self-test COMPILER   libraries that let out too much or too little
set -euo pipefail

readonly wanted="DoMetadataDialog
GetGlobalKIVMetadataVector
GetGlobalKIVMetadataVectorSize
MetadataAPIInitialize
MetadataAPITerminate"

# Everything that is defined counts, whatever its kind: functions, data, weak templates.
exported() { nm -D --defined-only "$1" | awk '{ print $NF }' | LC_ALL=C sort; }

check() {
    local found
    found="$(exported "$1")"
    [ "$found" = "$wanted" ] && return
    echo "$1: < is missing, > is too much" >&2
    diff <(echo "$wanted") <(echo "$found") | grep '^[<>]' >&2
    return 1
}

check_without() {
    local found
    found="$(nm -DC --defined-only "$2" | grep -i -- "$1")" || return 0
    printf '%s lets out:\n%s\n' "$2" "$found" >&2
    return 1
}

links_no() {
    local found
    found="$(readelf -d "$2" | grep NEEDED)" || return 1 # each of ours needs some library
    ! grep -i -- "$1" <<< "$found" >&2
}

# library NAME CODE: builds $folder/NAME.so from C++ code.
library() { "$compiler" -shared -fPIC -x c++ -o "$folder/$1.so" - <<< "$2"; }

self_test() {
    local compiler="$1" name folder
    folder="$(mktemp -d)"
    # shellcheck disable=SC2064
    trap "rm -rf '$folder'" EXIT
    local five='extern "C" { void DoMetadataDialog() {} void GetGlobalKIVMetadataVector() {}
        void GetGlobalKIVMetadataVectorSize() {} void MetadataAPIInitialize() {} '
    library good "$five void MetadataAPITerminate() {} }"
    library missing "$five }"
    library function "$five void MetadataAPITerminate() {} void More() {} }"
    library data "$five void MetadataAPITerminate() {} int more = 1; }"
    library weak "$five void MetadataAPITerminate() {} }
        template <class T> T Twice(T x) { return x + x; }
        template int Twice<int>(int);"
    check "$folder/good.so" || { echo "a good library is refused" >&2; return 1; }
    for name in missing function data weak; do
        if check "$folder/$name.so" 2> "$folder/$name.txt"; then
            echo "$name: not found" >&2
            return 1
        fi
        echo "$name: found: $(grep '^[<>]' "$folder/$name.txt")"
    done
    library foreign "namespace Foreign { struct Thing {}; }
        template <class T> void Use(T) {}
        template void Use(Foreign::Thing);"
    check_without Other "$folder/foreign.so" || { echo "a good library is refused" >&2; return 1; }
    if check_without Foreign "$folder/foreign.so" 2> /dev/null; then
        echo "foreign: not found" >&2
        return 1
    fi
    echo "foreign: found"
}

case "${1-}" in
    --self-test) self_test "${2:-c++}" ;;
    --without) check_without "$2" "$3" && echo "$(basename "$3"): nothing of $2" ;;
    --links-no) links_no "$2" "$3" && echo "$(basename "$3"): needs no $2" ;;
    "" | -*) sed -n '2,7s/^# \{0,1\}//p' "$0" >&2; exit 2 ;;
    *) check "$1" && echo "$(basename "$1"): $(wc -l <<< "$wanted") functions, nothing else" ;;
esac
