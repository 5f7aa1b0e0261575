#!/bin/bash
# kit.sh ZELKIT MAKE_MODERN FOLDER: how fast zelkit rewrites and converts, beside perf script on the same recording.
# CPU time of one run each; ratios are within the run.
set -euo pipefail

zelkit=$1
make_modern=$2
folder=$(realpath -m "$3")  # a relative cache folder is ignored
export XDG_CACHE_HOME=$folder/cache
mkdir -p "$folder"

# timed NAME COMMAND...: "seconds of CPU" and "MiB of memory" into NAME.figures
timed() {
    local name=$1
    shift
    /usr/bin/time -f '%U %S %M' -o "$folder/$name.figures" "$@" >/dev/null 2>"$folder/$name.said"
}
cpu() { awk 'END { print $1 + $2 }' "$folder/$1.figures"; }
kernel() { awk 'END { print $2 }' "$folder/$1.figures"; }
memory() { awk 'END { print $3 / 1024 }' "$folder/$1.figures"; }

large=$folder/large.data
[ -e "$large" ] || "$make_modern" "$large" 1000 >/dev/null
size=$(stat -c %s "$large")
cat "$large" >/dev/null  # into the page cache
timed import "$zelkit" import "$large" -o "$folder/large.old"
blocks=$(($(stat -c %s "$folder/large.old") >> 17))
rm "$folder/large.old"
# What the machine takes for the pages of the output, whoever writes them.
timed write dd if=/dev/zero of="$folder/large.old" bs=128K count="$blocks"
rm "$folder/large.old"
records=$(sed -n 's/.*: \([0-9]*\) of .* samples$/\1/p' "$folder/import.said")
awk -v size="$size" -v cpu="$(cpu import)" -v memory="$(memory import)" -v records="$records" 'BEGIN {
    printf "import of %.0f MB: %.2f s of CPU, %.0f MB/s, %.0f MiB of memory (bound: %.0f)\n", size / 1e6, cpu, size / 1e6 / cpu,
        memory, 64 + 16 * records / 1048576 }'
echo "  $(kernel import) s of it in the kernel; to write as much, dd takes $(cpu write) s"

# A system-wide recording of this machine, with what maps two hundred files in it.
system=$folder/system.data
if [ ! -e "$system" ]; then
    # shellcheck disable=SC2016 # the shell that perf starts expands it
    perf record -q -a -g -e cpu-clock -F 999 -o "$system" -- sh -c '
        for library in $(find /usr/lib -name "lib*.so.*" -type f | head -250); do
            LD_PRELOAD=$library timeout 5 /bin/true
        done' >/dev/null 2>&1 || true
fi
rm -rf "$XDG_CACHE_HOME"
timed cold "$zelkit" convert "$system" -o "$folder/system.json"
timed warm "$zelkit" convert "$system" -o "$folder/system.json"
timed script perf script -i "$system" -F comm,tid,cpu,time,event,ip,sym,dso
files=$(perf script -i "$system" --show-mmap-events 2>/dev/null | grep -o 'r-xp /.*' | sort -u | wc -l)
awk -v files="$files" -v cold="$(cpu cold)" -v warm="$(cpu warm)" -v script="$(cpu script)" 'BEGIN {
    printf "convert of a system-wide recording with %d mapped files: %.2f s of CPU, %.2f s with an empty cache; perf script %.2f s\n",
        files, warm, cold, script
    printf "  %.1f times as fast as perf script, %.1f times with an empty cache\n", script / warm, script / cold }'
