#!/usr/bin/env bash
# Converts each case of two folders of make_worst, nine times each, and prints the least times and their ratio:
# scaling.sh FOLDER LARGER_FOLDER
set -euo pipefail
top=$(cd "$(dirname "$0")/.." && pwd)
document=$(mktemp)
trap 'rm -f "$document"' EXIT

milliseconds() { # the least time of converting a case
    local folder=$1 least=0 start time
    for _ in {1..9}; do
        start=${EPOCHREALTIME/./}
        # shellcheck disable=SC2046
        ZELVIEW_CONFIG=$folder DOCUMENT_ROOT=$folder "$top/build/release/examples/convert_for_machine" "$folder" \
            $(<"$folder/options") -i "$folder/perf.data" -o "$document" >/dev/null 2>&1
        time=$((${EPOCHREALTIME/./} - start))
        [ "$least" != 0 ] && [ "$least" -le "$time" ] || least=$time
    done
    echo $((least / 100))
}

printf '%-38s %10s %10s %7s\n' case "$(basename "$1")" "$(basename "$2")" ratio
for folder in "$1"/*; do
    small=$(milliseconds "$folder")
    large=$(milliseconds "$2/$(basename "$folder")")
    awk -v name="$(basename "$folder")" -v small="$small" -v large="$large" \
        'BEGIN { printf "%-38s %7.1f ms %7.1f ms %7.1f\n", name, small / 10, large / 10, large / small }'
done
