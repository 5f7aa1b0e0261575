#!/usr/bin/env bash
# Converts each case of two folders of make_worst, or those named, nine times each, and prints the least times and
# their ratio. The program is convert_for_machine, and what runs it if the machine does not:
# scaling.sh FOLDER LARGER_FOLDER PROGRAM [CASE...]
set -euo pipefail
smaller=$1 larger=$2 program=$3
shift 3
document=$(mktemp)
trap 'rm -f "$document"' EXIT

milliseconds() { # the least time of converting a case
    local folder=$1 least=0 start time
    for _ in {1..9}; do
        start=${EPOCHREALTIME/./}
        # shellcheck disable=SC2046,SC2086
        ZELVIEW_CONFIG=$folder DOCUMENT_ROOT=$folder $program "$folder" $(<"$folder/options") -i "$folder/perf.data" \
            -o "$document" >/dev/null 2>&1
        time=$((${EPOCHREALTIME/./} - start))
        [ "$least" != 0 ] && [ "$least" -le "$time" ] || least=$time
    done
    echo $((least / 100))
}

cases=("$@")
[ $# -gt 0 ] || mapfile -t cases < <(ls "$smaller")
printf '%-38s %10s %10s %7s\n' case "$(basename "$smaller")" "$(basename "$larger")" ratio
for name in "${cases[@]}"; do
    awk -v name="$name" -v small="$(milliseconds "$smaller/$name")" -v large="$(milliseconds "$larger/$name")" \
        'BEGIN { printf "%-38s %7.1f ms %7.1f ms %7.1f\n", name, small / 10, large / 10, large / small }'
done
