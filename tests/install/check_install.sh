#!/bin/sh
# Installs what is built into a folder that goes again, and looks at it: check_install.sh BUILD_DIR SOURCE_DIR
set -eu
here=$(cd "$(dirname "$0")" && pwd)
build=$1
source=$2
prefix=$(mktemp -d)
trap 'rm -rf "$prefix"' EXIT

cmake --install "$build" --prefix "$prefix/usr" >"$prefix/log" || { cat "$prefix/log"; exit 1; }
# No text that is installed knows where it was made; programs with debugging information do.
if grep -rIlF -e "$build" -e "$source" "$prefix/usr"; then
    echo "these name the folder of the build"
    exit 1
fi
# Nor where it was installed first.
mv "$prefix/usr" "$prefix/moved"
"$prefix/moved/bin/formwork" get "$source/samples/kinds.pdf" address.city | grep -qx London
sh "$here/check_consumers.sh" "$source/samples/kinds.pdf" "$prefix/moved"
