#!/usr/bin/env bash
# libraries.sh FOLDER: zlib, TinyXML, FriBidi and a part of Nettle for wasm, made from the sources of Debian's packages, which are those of
# the native libraries. Leaves FOLDER/include and FOLDER/lib. The machine's own package lists stay as they are.
set -euo pipefail

[[ ${1:?"libraries.sh FOLDER"} == /* ]] || set -- "$PWD/$1"
OUT=$1
FLAGS=(-Os -DNDEBUG)

# Source packages are looked up in lists of their own, made of this machine's.
fetch_sources() {
    local apt=$OUT/apt list package
    mkdir -p "$apt/parts" "$apt/lists/partial" "$apt/cache/archives/partial" "$OUT/src"
    for list in /etc/apt/sources.list.d/debian.sources /etc/apt/sources.list; do
        [[ -s $list ]] || continue
        sed -e 's/^Types:.*/Types: deb-src/' -e 's/^deb /deb-src /' "$list" >"$apt/parts/${list##*/}"
    done
    [[ ! -e $apt/parts/sources.list ]] || mv "$apt/parts/sources.list" "$apt/parts/machine.list"
    local options=(-q -o "Dir::Etc::SourceList=/dev/null" -o "Dir::Etc::SourceParts=$apt/parts" -o "Dir::State::Lists=$apt/lists"
        -o "Dir::Cache=$apt/cache" -o APT::Sandbox::User=root)
    apt-get "${options[@]}" update
    for package in zlib tinyxml nettle fribidi; do
        (cd "$OUT/src" && apt-get "${options[@]}" source --download-only "$package" && dpkg-source --no-check -x "$package"_*.dsc "$package")
    done
    : >"$OUT/src/complete"
}

# archive NAME FOLDER FILE...: a static library of these sources.
archive() {
    local name=$1 folder=$2 compile file objects=()
    shift 2
    [[ ! -e $OUT/lib/lib$name.a ]] || return 0
    for file in "$@"; do
        mkdir -p "$(dirname "$OUT/obj/$name/$file")"
        compile=emcc
        [[ $file != *.cpp ]] || compile=em++
        $compile "${FLAGS[@]}" -I"$OUT/include" -I"$OUT/config" -c "$OUT/src/$folder/$file" -o "$OUT/obj/$name/${file%.*}.o"
        objects+=("$OUT/obj/$name/${file%.*}.o")
    done
    mkdir -p "$OUT/lib"
    emar rcs "$OUT/lib/lib$name.a" "${objects[@]}"
}

make_zlib() {
    local FLAGS=(-O2 -DNDEBUG)
    cp "$OUT"/src/zlib/{zlib,zconf}.h "$OUT/include/"
    archive z zlib {adler32,compress,crc32,deflate,inffast,inflate,inftrees,trees,uncompr,zutil}.c
}

make_tinyxml() {
    cp "$OUT/src/tinyxml/tinyxml.h" "$OUT/include/"
    archive tinyxml tinyxml {tinyxml,tinyxmlparser,tinyxmlerror}.cpp
}

# The functions that open encrypted files; what the library's configuration would find out does not matter to them.
make_nettle() {
    mkdir -p "$OUT/config" "$OUT/include/nettle"
    : >"$OUT/config/config.h"
    sed -e 's/@MAJOR_VERSION@/3/; s/@MINOR_VERSION@/8/; s/@GMP_NUMB_BITS@/0/; s/@NETTLE_USE_MINI_GMP@/0/' \
        "$OUT/src/nettle/version.h.in" >"$OUT/include/nettle/version.h"
    cp "$OUT"/src/nettle/*.h "$OUT/include/nettle/"
    local parts=(md5 md5-compress sha256 sha256-compress sha512 sha512-compress arcfour arcfour-crypt memxor cbc)
    parts+=($(cd "$OUT/src/nettle" && ls aes*.c | sed 's/\.c$//' | grep -vE 'meta|aesdata'))
    parts+=(memxor3 write-be32 write-le32)
    archive nettle nettle "${parts[@]/%/.c}"
}

make_fribidi() {
    mkdir -p "$OUT/include/fribidi"
    cp "$OUT"/src/fribidi/lib/*.h "$OUT/include/fribidi/"
    cp /usr/include/fribidi/fribidi-config.h "$OUT/include/fribidi/"
    local FLAGS=("${FLAGS[@]}" -DSTDC_HEADERS -DHAVE_STDLIB_H -DHAVE_STRING_H -DHAVE_STRINGIZE -I"$OUT/include/fribidi")
    archive fribidi fribidi/lib fribidi{,-bidi,-bidi-types,-brackets,-joining,-joining-types,-mirroring,-run,-shape,-arabic,-deprecated}.c
}

[[ ! -e $OUT/lib/cmake ]] || exit 0
mkdir -p "$OUT/include"
[[ -e $OUT/src/complete ]] || fetch_sources
make_zlib
make_tinyxml
make_nettle
make_fribidi
cp -r /usr/include/nlohmann "$OUT/include/"
mkdir -p "$OUT/lib/cmake/nlohmann_json"
cat >"$OUT/lib/cmake/nlohmann_json/nlohmann_jsonConfig.cmake" <<'END'
add_library(nlohmann_json::nlohmann_json INTERFACE IMPORTED)
get_filename_component(include "${CMAKE_CURRENT_LIST_DIR}/../../../include" ABSOLUTE)
target_include_directories(nlohmann_json::nlohmann_json INTERFACE ${include})
END
