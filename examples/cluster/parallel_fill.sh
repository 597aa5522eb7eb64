#!/usr/bin/env bash
# Fills a form for every row of a table with GNU parallel, in chunks of rows that may fail and be repeated:
#
#   parallel_fill.sh [OPTION...] FORM ROWS PATTERN [-- FILL OPTION...]
#
#   --chunk N      rows of a chunk (1000)
#   --jobs N       chunks at once on a machine (its cores)
#   --hosts FILE   machines, a line each, as parallel --sshloginfile takes them; form, rows, outputs and manifests must have
#                  the same paths on all of them
#   --manifests D  where the manifests of the chunks go (PATTERN's folder, manifests); repeating a command goes on by them
#   --formwork P   the command (formwork)
#
# Exits as formwork fill does: 0 when all rows are done, 3 when some were refused, 1 when chunks failed for good.
set -euo pipefail

chunk=1000
jobs=100%
hosts=
manifests=
formwork=formwork
while [[ ${1:-} == --* ]]; do
    case $1 in
        --chunk) chunk=$2 ;;
        --jobs) jobs=$2 ;;
        --hosts) hosts=$2 ;;
        --manifests) manifests=$2 ;;
        --formwork) formwork=$2 ;;
        *) echo "parallel_fill.sh: there is no option $1" >&2; exit 2 ;;
    esac
    shift 2
done
(($# >= 3)) || { sed -n '2,/^set/s/^# \{0,1\}//p' "$0" >&2; exit 2; }
form=$1 rows=$2 pattern=$3
shift 3
[[ ${1:-} != -- ]] || shift
manifests=$(realpath -m "${manifests:-$(dirname "$pattern")/manifests}")
mkdir -p "$manifests"

# What does one chunk, a file since parallel would take braces of the pattern for its own. Refused rows are no reason to try again.
{
    echo '#!/usr/bin/env bash'
    printf 'cd %q\n' "$PWD"
    printf '%q ' "$formwork" fill "$form" --batch "$rows" -o "$pattern" "$@"
    printf -- '--rows "$1" --manifest %q/"$1".jsonl --resume\n' "$manifests"
    printf 'status=$?; ((status != 3)) || { status=0; : >%q/"$1".refused; }; exit $status\n' "$manifests"
} >"$manifests/fill_chunk"

# A table has no more rows than lines, whose ends may be CR; chunks behind the last row find nothing to do.
lines=$(tr '\r' '\n' <"$rows" | wc -l)
rm -f "$manifests"/*.refused
status=0
for ((first = 1; first <= lines + 1; first += chunk)); do
    echo "$first-$((first + chunk - 1))"
done | parallel --will-cite --jobs "$jobs" ${hosts:+--sshloginfile "$hosts"} --retries 4 --joblog "$manifests/jobs.log" \
    bash "$manifests/fill_chunk" || status=$?
((status == 0)) || { echo "parallel_fill.sh: $status chunks failed, see $manifests/jobs.log" >&2; exit 1; }
! compgen -G "$manifests/*.refused" >/dev/null || exit 3
