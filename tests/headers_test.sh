#!/bin/sh
# Every public header compiles alone, as C99 and as C++, without a warning.
# usage: headers_test.sh INCLUDE_DIR CC CXX
set -eu
include=$1 cc=$2 cxx=$3
for header in "$include"/zimsr.h "$include"/zimsr/*.h; do
    "$cc" -std=c99 -Wall -Wextra -Wpedantic -Werror -I"$include" -fsyntax-only -x c "$header"
    "$cxx" -std=c++11 -Wall -Wextra -Wpedantic -Werror -I"$include" -fsyntax-only -x c++ "$header"
done
