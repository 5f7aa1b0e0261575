#!/usr/bin/env bash
# Times the conversion of a recording that maps 200 libraries of this machine, with the real nm, beside another build's
# and perf script, all in turn in one run: wait_for_nm.sh [OTHER_ZELCONV]. Documents go to memory; medians of five runs.
set -euo pipefail
cd "$(dirname "$0")/.."
most=200
folder=out/bench/mapped
mkdir -p "$folder"
# find fails where links go in circles.
{ find -L /usr/lib -name '*.so*' -type f -size +20k 2>/dev/null || true; } | sort -u | awk -F/ -v most="$most" '!seen[$NF]++ && ++count <= most' >"$folder/libraries"
build/release/bench/make_mapped "$folder/perf.data" <"$folder/libraries"
results=$(mktemp -d -p /dev/shm)
trap 'rm -rf "$results"' EXIT

commands=("build/release/zelconv -b 1 -i $folder/perf.data -o $results/own.json")
names=(zelconv)
if [ -n "${1:-}" ]; then
    commands+=("$1 -b 1 -i $folder/perf.data -o $results/other.json")
    names+=("the other build")
fi
commands+=("perf script -i $folder/perf.data >$results/script")
names+=("perf script")
hyperfine --style none --warmup 1 --runs 5 --export-json "$results/times.json" "${commands[@]}" >/dev/null 2>&1

printf '\n%s libraries of this machine, %s processors\n%-22s %10s %10s %10s\n' \
    "$(wc -l <"$folder/libraries")" "$(nproc)" "" wall user system
for i in "${!names[@]}"; do
    printf '%-22s ' "${names[i]}"
    jq -r ".results[$i] | [.median, .user, .system] | @tsv" "$results/times.json" |
        awk '{ printf "%8.3f s %8.3f s %8.3f s\n", $1, $2, $3 }'
done
for i in "${!names[@]}"; do
    [ "$i" = 0 ] || jq -r ".results[0].median / .results[$i].median" "$results/times.json" |
        awk -v name="${names[i]}" '{ printf "  %-58s %6.2f\n", "share of the time of " name, $1 }'
done
if [ -e "$results/other.json" ]; then cmp "$results/own.json" "$results/other.json" && echo "  the documents are the same"; fi
