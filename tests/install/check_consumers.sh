#!/bin/sh
# Builds and runs programs with what is installed, by pkg-config and by find_package, with every compiler that is there.
#
# check_consumers.sh FORM.pdf [PREFIX]: a prefix where pkg-config and CMake don't look by themselves.
set -eu
here=$(cd "$(dirname "$0")" && pwd)
form=$1
prefix=${2:-}
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
ran=0

if [ -n "$prefix" ]; then
    config=$(find "$prefix" -name formwork.pc)
    PKG_CONFIG_PATH=$(dirname "$config")
    LD_LIBRARY_PATH=$(dirname "$PKG_CONFIG_PATH")
    export PKG_CONFIG_PATH LD_LIBRARY_PATH
fi
version=$(pkg-config --modversion formwork)

# expect OUTPUT PROGRAM: what the program prints for the form.
expect() {
    printed=$("$2" "$form")
    [ "$printed" = "$1" ] || { echo "$2 prints $printed, not $1"; exit 1; }
    ran=$((ran + 1))
}

for compiler in gcc clang; do
    command -v $compiler >/dev/null || continue
    for standard in c99 c17; do
        $compiler -std=$standard -Wall -Wextra -Wpedantic -Werror "$here/consumer.c" $(pkg-config --cflags --libs formwork) -o "$work/$compiler"
        expect "$version $version Ulm" "$work/$compiler"
    done
    # The archive is there when it was asked for, and named to the linker as a file.
    if [ -e "$(pkg-config --variable=libdir formwork)/libformwork.a" ]; then
        flags=$(pkg-config --static --libs formwork | sed 's/-lformwork /-l:libformwork.a /')
        $compiler "$here/consumer.c" $(pkg-config --cflags formwork) $flags -o "$work/$compiler.static"
        expect "$version $version Ulm" "$work/$compiler.static"
    fi
done
for compiler in g++ clang++; do
    command -v $compiler >/dev/null || continue
    cmake -S "$here/find_package" -B "$work/build.$compiler" -DCMAKE_CXX_COMPILER=$compiler ${prefix:+-DCMAKE_PREFIX_PATH="$prefix"} >"$work/log" &&
        cmake --build "$work/build.$compiler" >"$work/log" || { cat "$work/log"; exit 1; }
    for program in "$work/build.$compiler"/consumer*; do
        expect "$version Ulm" "$program"
    done
done
[ $ran -gt 0 ] || { echo "no compiler is there"; exit 1; }
echo "$ran programs run"
