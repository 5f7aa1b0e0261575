#!/usr/bin/env bash
# Converts each case of two folders of make_worst, or those named, and prints the least time of the processor of five
# pairs of runs, as other work on the machine changes that less than the time on the clock, and the ratio of the two. The
# program is convert_for_machine, and what runs it if the machine does not:
# scaling.sh FOLDER LARGER_FOLDER PROGRAM [CASE...]
set -euo pipefail
smaller=$1 larger=$2 program=$3
shift 3
document=$(mktemp)
trap 'rm -f "$document"' EXIT

convert() {
    # shellcheck disable=SC2046,SC2086
    ZELVIEW_CONFIG=$1 DOCUMENT_ROOT=$1 $program "$1" $(<"$1/options") -i "$1/perf.data" -o "$document" \
        >/dev/null 2>&1 </dev/null
}

milliseconds() { # of converting a case
    local TIMEFORMAT='%3U %3S'
    for _ in {1..5}; do
        { time { convert "$1" && convert "$1"; }; } 2>&1
    done | awk 'NR == 1 || $1 + $2 < least { least = $1 + $2 } END { print 500 * least }'
}

cases=("$@")
[ $# -gt 0 ] || mapfile -t cases < <(ls "$smaller")
printf '%-38s %10s %10s %7s\n' case "$(basename "$smaller")" "$(basename "$larger")" ratio
for name in "${cases[@]}"; do
    awk -v name="$name" -v small="$(milliseconds "$smaller/$name")" -v large="$(milliseconds "$larger/$name")" \
        'BEGIN { printf "%-38s %7.1f ms %7.1f ms %7.1f\n", name, small, large, large / small }'
done
