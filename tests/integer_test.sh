#!/bin/sh
# The all-integer filter bank is built and evaluated without a floating-point instruction, and calls nothing that could
# have one: no instruction of its objects names a floating-point or vector register, or works on the x87 stack.
# usage: integer_test.sh OBJECT...
set -eu
test $# -gt 0 || { echo "no object to look at"; exit 1; }
for object; do
    code=$(objdump -d --no-show-raw-insn "$object")
    for function in zimsMelFBankGetSize_32s zimsMelFBankInit_32s zimsEvalFBank_32s_Sfs; do
        case $code in *"<$function>:"*) ;; *) echo "$object has no $function"; exit 1 ;; esac
    done
    floating=$(echo "$code" | grep -E '%([xyz]?mm|st)|^ *[0-9a-f]+:[[:space:]]+f[a-z]' || true)
    test -z "$floating" || { printf '%s computes with:\n%s\n' "$object" "$floating"; exit 1; }
    called=$(nm -u "$object" | awk '{ print $2 }' | grep -vE '^(memset|_GLOBAL_OFFSET_TABLE_|__u?divdi3)$' || true)
    test -z "$called" || { printf '%s calls:\n%s\n' "$object" "$called"; exit 1; }
done
