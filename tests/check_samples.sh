#!/bin/sh
# Makes the sample forms and the fuzz seeds anew in an empty folder and compares them with the committed ones, both
# ways: a file that differs, is missing or has no maker fails. Usage: check_samples.sh [PYTHON]
set -eu

python=${1:-python3}
root=$(CDPATH= cd -- "$(dirname -- "$0")/.." && pwd)
made=$(mktemp -d)
trap 'rm -rf "$made"' EXIT

mkdir "$made/samples" "$made/seeds"
"$python" "$root/samples/make_samples.py" "$made/samples"
"$python" "$root/fuzz/make_seeds.py" "$made/seeds"

status=0
compare() {  # made folder, committed folder
    for file in "$1"/*.pdf "$2"/*.pdf; do
        name=$(basename -- "$file")
        if ! cmp -- "$1/$name" "$2/$name"; then
            echo "differs: $2/$name" >&2
            status=1
        fi
    done
}
compare "$made/samples" "$root/samples"
compare "$made/seeds/open_form" "$root/fuzz/seeds/open_form"
for file in "$made"/seeds/*/*; do
    cmp -- "$file" "$root/fuzz${file#"$made"}" || status=1
done
exit $status
