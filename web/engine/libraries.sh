#!/usr/bin/env bash
# libraries.sh FOLDER: zlib, TinyXML, FriBidi and parts of Nettle and FreeType for wasm, made from the sources of Debian's packages, which are those of
# the native libraries. Leaves FOLDER/include and FOLDER/lib. The machine's own package lists stay as they are.
set -euo pipefail

[[ ${1:?"libraries.sh FOLDER"} == /* ]] || set -- "$PWD/$1"
OUT=$1
FLAGS=(-Oz -DNDEBUG)

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
    for package in zlib tinyxml nettle fribidi freetype; do
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

# The formats of font programs that PDF files embed, and nothing that draws, hints or unpacks.
make_freetype() {
    local module
    rm -rf "$OUT/include/freetype2"
    cp -r "$OUT/src/freetype/include" "$OUT/include/freetype2"
    for module in tt_driver t1_driver cff_driver t1cid_driver; do
        echo "FT_USE_MODULE( FT_Driver_ClassRec, ${module}_class )"
    done >"$OUT/include/freetype2/freetype/config/ftmodule.h"
    for module in psaux psnames sfnt; do
        echo "FT_USE_MODULE( FT_Module_Class, ${module}_module_class )"
    done >>"$OUT/include/freetype2/freetype/config/ftmodule.h"
    sed -i -E 's,^#define (FT_CONFIG_OPTION_(USE_LZW|USE_ZLIB|ENVIRONMENT_PROPERTIES|MAC_FONTS|INCREMENTAL)|TT_USE_BYTECODE_INTERPRETER|TT_CONFIG_OPTION_(BYTECODE_INTERPRETER|EMBEDDED_BITMAPS|COLOR_LAYERS|SVG|BDF|GX_VAR_SUPPORT)|T1_CONFIG_OPTION_NO_(AFM|MM_SUPPORT)|AF_CONFIG_OPTION_CJK)\b.*,/* \1 is off */,' \
        "$OUT/include/freetype2/freetype/config/ftoption.h"
    local FLAGS=("${FLAGS[@]}" -DFT2_BUILD_LIBRARY -DT1_CONFIG_OPTION_NO_AFM -I"$OUT/include/freetype2")
    archive freetype freetype/src base/ft{base,cid,fntfmt,init,system}.c sfnt/sfnt.c truetype/truetype.c cff/cff.c type1/type1.c \
        cid/type1cid.c psaux/psaux.c psnames/psnames.c
}

[[ ! -e $OUT/lib/libfreetype.a ]] || exit 0
mkdir -p "$OUT/include"
[[ -e $OUT/src/complete ]] || fetch_sources
make_zlib
make_tinyxml
make_nettle
make_fribidi
make_freetype
cp -r /usr/include/nlohmann "$OUT/include/"
mkdir -p "$OUT/lib/cmake/nlohmann_json"
cat >"$OUT/lib/cmake/nlohmann_json/nlohmann_jsonConfig.cmake" <<'END'
add_library(nlohmann_json::nlohmann_json INTERFACE IMPORTED)
get_filename_component(include "${CMAKE_CURRENT_LIST_DIR}/../../../include" ABSOLUTE)
target_include_directories(nlohmann_json::nlohmann_json INTERFACE ${include})
END
