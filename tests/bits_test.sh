#!/bin/sh
# The same bits everywhere: the digests that the program prints with each of several libraries are equal.
# usage: bits_test.sh PROGRAM LIBRARY_DIR...
set -eu
program=$1
shift
reference=
for dir; do
    digests=$(LD_LIBRARY_PATH=$dir "$program")
    [ -n "$reference" ] || reference=$digests
    if [ "$digests" != "$reference" ]; then
        echo "$dir differs:"
        printf '%s\n' "$reference" "$digests" | sort | uniq -u
        exit 1
    fi
done
echo "$(printf '%s\n' "$reference" | wc -l) families, $# levels"
