#!/bin/sh
# Installs into a temporary prefix, then builds and runs a C and a C++ program by pkg-config and by the CMake package.
# usage: package_test.sh BUILD_DIR SOURCE_DIR CC CXX FLAGS
set -eu
build=$1 source=$2 cc=$3 cxx=$4 flags=${5-}
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
prefix=$work/prefix

cmake --install "$build" --prefix "$prefix" >"$work/log" || { cat "$work/log"; exit 1; }

PKG_CONFIG_PATH=$(dirname "$(find "$prefix" -name zimsr.pc)")
export PKG_CONFIG_PATH
LD_LIBRARY_PATH=$(dirname "$PKG_CONFIG_PATH")
export LD_LIBRARY_PATH
"$cc" $flags -std=c99 -Wall -Wextra -Wpedantic -Werror "$source/main.c" $(pkg-config --cflags --libs zimsr) -o "$work/user_c"
"$cxx" $flags -std=c++98 -Wall -Wextra -Wpedantic -Werror -Wno-long-long "$source/main.cpp" $(pkg-config --cflags --libs zimsr) \
    -o "$work/user_cpp"
for program in user_c user_cpp; do
    test "$("$work/$program")" = "libzimsr.so v4.1"
done
unset LD_LIBRARY_PATH

cmake -S "$source" -B "$work/cmake" -DCMAKE_PREFIX_PATH="$prefix" -DCMAKE_C_COMPILER="$cc" -DCMAKE_CXX_COMPILER="$cxx" \
    -DCMAKE_C_FLAGS="$flags" -DCMAKE_CXX_FLAGS="$flags" >"$work/log" 2>&1 || { cat "$work/log"; exit 1; }
cmake --build "$work/cmake" >"$work/log" 2>&1 || { cat "$work/log"; exit 1; }
for program in user_c user_cpp; do
    test "$("$work/cmake/$program")" = "libzimsr.so v4.1"
done
echo "installed, and used from C and C++ through pkg-config and CMake"
