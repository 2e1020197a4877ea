#!/bin/sh
# No level fuses a multiplication and an addition, which would give it other bits than the others. Compilers have done so
# from vectorised loops although -ffp-contract=off was asked for.
# usage: contraction_test.sh LIBRARY...
set -eu
for library; do
    fused=$(objdump -d --no-show-raw-insn "$library" | awk '/^[0-9a-f]+ </ { function_name = $2 }
                                                            /vfn?m(add|sub)/ { print function_name, $0 }')
    test -z "$fused" || { printf '%s fuses:\n%s\n' "$library" "$fused"; exit 1; }
done
