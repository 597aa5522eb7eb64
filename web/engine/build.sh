#!/usr/bin/env bash
# build.sh FOLDER [JOBS]: FOLDER/formwork.wasm, with what it is made of in FOLDER/libraries and FOLDER/engine.
set -euo pipefail

[[ ${1:?"build.sh FOLDER [JOBS]"} == /* ]] || set -- "$PWD/$1" "${2:-}"
ROOT=$(cd "$(dirname "${BASH_SOURCE[0]}")/../.." && pwd)
OUT=$1

"$ROOT/web/engine/libraries.sh" "$OUT/libraries"
emcmake cmake -S "$ROOT" -B "$OUT/engine" -G Ninja -DCMAKE_BUILD_TYPE=MinSizeRel -DFORMWORK_WEB=ON -DFORMWORK_COMMAND=OFF \
    -DFORMWORK_INSTALL=OFF -DCCACHE_PROGRAM=OFF -DFORMWORK_FONT_PROGRAMS=OFF -DFORMWORK_PROCESSES=OFF -DCMAKE_POSITION_INDEPENDENT_CODE=OFF \
    -DCMAKE_FIND_ROOT_PATH="$OUT/libraries" \
    -DCMAKE_CXX_FLAGS="-isystem $OUT/libraries/include -include $ROOT/web/engine/library_gaps.h" \
    -DCMAKE_CXX_FLAGS_MINSIZEREL="-Oz -finline-functions -DNDEBUG" >/dev/null
cmake --build "$OUT/engine" --target formwork_wasm ${2:+-j "$2"} -- -k 0
cp "$OUT/engine/web/engine/formwork.wasm" "$OUT/formwork.wasm"
