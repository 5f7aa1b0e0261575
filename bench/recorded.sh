#!/usr/bin/env bash
# Times a timechart of this machine beside perf timechart on the same recording: recorded.sh ZELCONV ZELKIT FOLDER. The
# made recordings are random, which no machine is. zelkit rewrites the recording for zelconv, which reads the old layout
# only. Seconds are of the processor, nine runs in turn.
set -euo pipefail
zelconv=$1
zelkit=$2
folder=$3
export kern_ver=3.10
mkdir -p "$folder"

# A dozen processes that sleep and wake, then some that send messages to each other: about a million trace-points. There
# are few processes, as many are hard on perf.
load() {
    local silence
    exec {silence}<> <(:)
    for _ in {1..12}; do
        for _ in {1..6000}; do read -rt 0.002 -u "$silence" || true; done &
    done
    perf bench sched pipe -l 320000
    perf bench sched messaging -g 1 -l 200
    wait
}

recording=$folder/recorded.data
if [ ! -e "$recording" ]; then
    mountpoint -q /sys/kernel/tracing || mount -t tracefs nodev /sys/kernel/tracing || true
    export -f load
    perf record -q -a -m 2048 -e 'sched:sched_switch,sched:sched_wakeup,irq:*' -o "$recording" -- bash -c load >/dev/null 2>&1 ||
        rm -f "$recording"
fi
if [ ! -e "$recording" ]; then
    echo "a timechart of this machine: skipped, perf cannot record trace-points here"
    exit 0
fi

results=$(mktemp -d -p /dev/shm)
trap 'rm -rf "$results"' EXIT
# measure NAME COMMAND...: adds its seconds to NAME's list
measure() {
    local name=$1
    shift
    rm -f "$results/document"
    /usr/bin/time -f '%U %S' -o "$results/time" "$@" >/dev/null 2>"$results/said"
    awk '{ print $1 + $2 }' "$results/time" >>"$results/$name"
}
# The first of ten rounds warms up.
for round in {0..9}; do
    measure import "$zelkit" import "$recording" -o "$folder/recorded.old"
    count=$(sed -n 's/.*: \([0-9]*\) of .* samples$/\1/p' "$results/said")
    measure zelconv "$zelconv" -t -b 1 -i "$folder/recorded.old" -o "$results/document"
    measure perf perf timechart -i "$recording" -o "$results/document"
    [ "$round" != 0 ] || rm "$results"/{import,zelconv,perf}
done
median() { sort -n "$results/$1" | sed -n 5p; }

printf '\na timechart of this machine, %s trace-points\n' "$count"
awk -v import="$(median import)" -v zelconv="$(median zelconv)" -v perf="$(median perf)" 'BEGIN {
    printf "zelconv %.3f s, perf timechart %.3f s; to rewrite the recording takes zelkit %.3f s\n", zelconv, perf, import
    printf "  %-58s %6.2f\n", "times as fast as perf timechart", perf / zelconv
    printf "  %-58s %6.2f\n", "with the rewriting", perf / (zelconv + import) }'
paste "$results/perf" "$results/zelconv" | awk '{ print $1 / $2 }' | sort -n | awk 'NR == 1 { worst = $1 } END {
    printf "  %-58s %6.2f\n  %-58s %6.2f\n", "in the worst pair of runs", worst, "in the best", $1 }'
