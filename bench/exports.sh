#!/usr/bin/env bash
# Times exports of a profile of 10^6 samples and of one of a tenth: exports.sh ZELKIT PAGE FOLDER
#
# Seconds are of the processor, the least of three runs; memory should be the same for both sizes where a format streams.
# FOLDER holds million.json and tenth.json, and trace.json for the format of timecharts.
set -euo pipefail
zelkit=$1
page=$2
folder=$3
work=$(mktemp -d -p /dev/shm)
trap 'rm -rf "$work"' EXIT

# measure COMMAND...: prints seconds and kilobytes
measure() {
    for _ in 1 2 3; do
        /usr/bin/time -f '%U %S %M' -o "$work/times" "$@" >/dev/null
        awk '{ print $1 + $2, $3 }' "$work/times"
    done | sort -n | head -n 1
}

megabytes() { awk -v bytes="$(stat -c %s "$1")" 'BEGIN { print bytes / 1e6 }'; }

# row FORMAT DOCUMENT SMALLER LEAST
row() {
    local seconds memory smaller
    read -r seconds memory < <(measure "$zelkit" export "$2" --to "$1")
    read -r _ smaller < <(measure "$zelkit" export "$3" --to "$1")
    awk -v name="$1" -v seconds="$seconds" -v size="$(megabytes "$2")" -v memory="$memory" -v smaller="$smaller" -v least="$4" \
        'BEGIN { printf "%-12s %6.2f s %6.0f MB/s (wanted %d) %7.1f MB, of a tenth %6.1f MB\n",
                 name, seconds, size / seconds, least, memory / 1024, smaller / 1024 }'
}

echo "exports of $(megabytes "$folder/million.json") MB"
for format in folded speedscope; do row $format "$folder/million.json" "$folder/tenth.json" 200; done
for format in json pprof cpuprofile firefox tsv tsv-samples; do row $format "$folder/million.json" "$folder/tenth.json" 100; done
row trace-event "$folder/trace.json" "$folder/trace.json" 100

read -r seconds memory < <(measure "$zelkit" view "$folder/million.json" --page "$page" -o "$work/report.html")
gzip -c "$folder/million.json" | base64 -w 0 >"$work/base64"
awk -v seconds="$seconds" -v memory="$memory" -v size="$(megabytes "$work/report.html")" -v whole="$(megabytes "$work/base64")" \
    'BEGIN { printf "view         %6.2f s (wanted 3) %7.1f MB; page %.1f MB, %.0f %% of the gzipped document in base64 (wanted 60)\n",
             seconds, memory / 1024, size, 100 * size / whole }'
