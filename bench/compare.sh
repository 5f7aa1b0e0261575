#!/usr/bin/env bash
# Times conversions of the benchmarks' recordings beside the floor and perf's own tools, all in turn in one run:
# compare.sh [OTHER_ZELCONV]
#
# The start of a run, which is the kernel's table and nm, is what a recording with the same maps and no sample takes.
# It is shown and, for the rates and ratios, taken off; a program that prints prepared lists replaces nm, whose
# own time is large and uneven. Documents go to memory, so that no disk plays a part, and are new ones: to delete the last
# one is not a conversion's work. Times are medians of nine runs, perf's of five.
set -euo pipefail
top=$(cd "$(dirname "$0")/.." && pwd)
cd "$top"
bench=$PWD/out/bench
export kern_ver=3.10
own_path=$PWD/build/release/bench/path:$PATH
results=$(mktemp -d)
documents=$(mktemp -d -p /dev/shm)
trap 'rm -rf "$results" "$documents"' EXIT

measure() { # measure NAME RUNS COMMAND: leaves median, user and system seconds in the results
    hyperfine --style none --prepare "rm -f $documents/$1.json" --warmup 1 --runs "$2" --export-json "$results/$1.json" "$3" >/dev/null 2>&1
    /usr/bin/time -f %M -o "$results/$1.memory" sh -c "exec $3" >/dev/null 2>&1 || true
}
figure() { jq -r ".results[0].$2" "$results/$1.json"; }
row() { # row NAME DOCUMENT
    local size=-
    [ ! -e "$2" ] || size=$(awk -v bytes="$(stat -c %s "$2")" 'BEGIN { printf "%.1f", bytes / 1e6 }')
    awk -v name="$1" -v wall="$(figure "$1" median)" -v user="$(figure "$1" user)" -v kernel="$(figure "$1" system)" \
        -v memory="$(tail -n 1 "$results/$1.memory")" -v size="$size" \
        'BEGIN { printf "%-22s %8.3f s %8.3f s %8.3f s %8.0f MB %9s MB\n", name, wall, user, kernel, memory / 1024, size }'
}
net() { awk -v all="$(figure "$1" median)" -v start="$(figure "${2:-start}" median)" 'BEGIN { print all - start }'; }
ratio() { awk -v a="$1" -v b="$2" -v text="$3" 'BEGIN { printf "  %-58s %6.2f\n", text, a / b }'; }

compare() { # compare FILE OPTION PERF_COMMAND...: NAME=COMMAND each
    local file=$1 option=$2 program=build/release/zelconv entry
    shift 2
    printf '\n%s, %s records\n%-22s %10s %10s %10s %11s %12s\n' "$file" 1000000 "" wall user system memory document
    measure start 9 "env PATH=$own_path $program $option -b 1 -i $bench/empty/$file -o $documents/start.json"
    measure tenth 9 "env PATH=$own_path $program $option -b 1 -i $bench/tenth/$file -o $documents/tenth.json"
    measure zelconv 9 "env PATH=$own_path $program $option -b 1 -i $bench/full/$file -o $documents/zelconv.json"
    measure floor 9 "build/release/bench/floor $bench/full/$file $documents/floor.json"
    [ -z "$other" ] || measure other 3 "env PATH=$own_path $other $option -b 1 -i $bench/full/$file -o $documents/other.json"
    for entry in "$@"; do measure "${entry%%=*}" 5 "${entry#*=}"; done

    for entry in start tenth zelconv floor ${other:+other} "${@%%=*}"; do row "$entry" "$documents/$entry.json"; done
    local own bytes
    own=$(net zelconv)
    bytes=$(stat -c %s "$bench/full/$file")
    awk -v own="$own" -v bytes="$bytes" \
        'BEGIN { printf "without the start %.3f s: %.0f records and %.0f MB a second\n", own, 1000000 / own, bytes / own / 1e6 }'
    ratio "$own" "$(figure floor median)" "times the floor"
    ratio "$(net tenth)" "$(awk -v own="$own" 'BEGIN { print own / 10 }')" "rate at 10^6 records over that at 10^5"
    awk -v memory="$(tail -n 1 "$results/zelconv.memory")" -v document="$(stat -c %s "$documents/zelconv.json")" \
        'BEGIN { printf "  %-58s %6.0f\n", "bytes of memory a record beside the document", (memory * 1024 - document) / 1000000 }'
    [ -z "$other" ] || ratio "$(net other)" "$own" "times as fast as the other build"
    for entry in "$@"; do ratio "$(figure "${entry%%=*}" median)" "$own" "times as fast as ${entry%%=*}"; done
}

other=${1:-}
compare profile.data "" "perf-script=perf script -i $bench/full/profile.data >$documents/perf-script.json" \
    "perf-data-convert=perf data convert --force -i $bench/full/profile.data --to-json $documents/perf-data-convert.json"
compare trace.data -t "perf-timechart=perf timechart -i $bench/full/trace.data -o $documents/perf-timechart.json"
