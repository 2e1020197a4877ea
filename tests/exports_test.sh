#!/bin/sh
# Every shared object exports what the headers declare and nothing else, and needs libc and libm alone.
# usage: exports_test.sh INCLUDE_DIR LIBRARY...
set -eu
include=$1
shift
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT

sed -n 's/.*\<ZIMSR_API\>[^(;]*\<\(zim[A-Za-z0-9_]*\)[(;].*/\1/p' "$include"/zimsr/*.h | sort >"$work/declared"
test -s "$work/declared"
for library; do
    nm -D --defined-only "$library" | awk '$2 != "A" { sub(/@.*/, "", $3); print $3 }' | sort >"$work/exported"
    diff "$work/declared" "$work/exported"
    needs=$(readelf -d "$library" | sed -n 's/.*(NEEDED).*\[\(.*\)\]/\1/p' | grep -v -e '^libc\.so\.6$' -e '^libm\.so\.6$' || true)
    test -z "$needs" || { echo "$library needs $needs"; exit 1; }
    readelf -d "$library" | grep -q 'SONAME.*\[libzimsr\.so\.4\]'
done
echo "$(wc -l <"$work/declared") names"
