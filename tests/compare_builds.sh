#!/usr/bin/env bash
# Converts every available recording with two builds, in both modes and with many option lists, and compares documents,
# standard output and exit status byte for byte: compare_builds.sh BUILD OTHER_BUILD [RUNNER...]
# RUNNER, such as qemu-arm, starts the programs of the other build.
set -euo pipefail
top=$(cd "$(dirname "$0")/.." && pwd)
one=$(cd "$1" && pwd)
other=$(cd "$2" && pwd)
shift 2
runner=("$@")
recordings=${ZELCONV_RECORDINGS:-$top/../shared/recordings}

work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
mkdir "$work/machine"
cp "$top/examples/machine/softirqs" "$work/machine/"
cp "$top/examples/machine/kallsyms" "$work/machine/"
for number in 2147483647 2147483648 -2147483648 -2147483649 99999999999999999999 0x10 1e9; do
    echo "           <...>-$number [000] .....  $number.5: tracing_mark_write: ZVIEW,$number,name,args $number"
done >"$work/machine/trace"
printf '11\n\n04\n13\n17\n17\n\n17\n04\n' >"$work/activeCounters"
mkdir -p "$work/config/plotx"
mv "$work/activeCounters" "$work/config/plotx/"

"$one/tests/support/make_edges" "$work"
inputs=("$work/edges.data" "$work/described.data" "$one/examples/profile.data" "$one/examples/timechart.data")
for file in "$recordings"/perf.data.* "$recordings"/*/*.data; do
    [ ! -e "$file" ] || inputs+=("$file")
done
[ ${#inputs[@]} -gt 4 ] || echo "no recordings of real machines here: the examples alone are compared"

# every time scale, every switch of the writer, and numerals at and beyond the edges
options=("-b 5" "-b 5 -l" "-b 5 -W -R" "-b 5 -l -W" "-b 5 -L -w -R" "-r" "-z" "-e" "-q" "-q -c 1.5 -g -3.25"
    "-q -c 1e300 -g -1e300" "-q -c inf" "-b inf" "-b nan" "-b -nan" "-b -0" "-I -b 5" "-r -s 14424.5 -f 14425.25" "-s 1e30" "-f -5"
    "-r -s -1 -f 99999999999999999999" "-b 2147483648 -v 0x7" "-b 5 -d -v 2147483648" "-b 5 -v -99999999999 -D" "-b 5 -v 4294967296")
environments=("kern_ver=3.4" "kern_ver=6.1 ARM64=y" "kern_ver=99999999999.99999999999" "kern_ver=-2147483649.7")

# Addresses of code and data, and descriptors, differ between builds.
comparable() { sed -E 's/ st:[^ ]+//; s/func:[0-9a-f]+/func/; s/^(checkFile .*)=.*/\1/'; }

convert() { # convert RESULT COMMAND...: leaves RESULT.json, if there is a document, and RESULT.out with status and output
    local result=$1 status=0
    shift
    rm -f "$result.json"
    # shellcheck disable=SC2086
    env $environment ZELVIEW_CONFIG="$work/config" DOCUMENT_ROOT="$top/examples/www" BUILD_TYPE=release \
        "$@" "$work/machine" -i "$input" -p "$recordings/arm32/rootfs:$one/examples" $mode $list -o "$result.json" >"$work/raw" || status=$?
    { echo "status $status"; comparable <"$work/raw"; } >"$result.out"
}

same() { # whether both have the same output, and the same document or none
    cmp -s "$work/one.out" "$work/other.out" || return 1
    [ -e "$work/one.json" ] || [ -e "$work/other.json" ] || return 0
    cmp -s "$work/one.json" "$work/other.json"
}

runs=0
differences=0
for input in "${inputs[@]}"; do
    for mode in "" -t; do
        for n in "${!options[@]}"; do
            list=${options[$n]}
            environment=${environments[$((n % ${#environments[@]}))]}
            # The shell's own word about a run that aborts goes the way of the programs' diagnostics.
            convert "$work/one" "$one/examples/convert_for_machine" 2>/dev/null
            convert "$work/other" "${runner[@]}" "$other/examples/convert_for_machine" 2>/dev/null
            runs=$((runs + 1))
            same && continue
            differences=$((differences + 1))
            echo "differs: $environment $(basename "$input") $mode $list"
            diff "$work/one.out" "$work/other.out" | head -3 || true
        done
    done
done
echo "compared ${#inputs[@]} recordings, $runs conversions with each build: $differences differ"
[ "$differences" = 0 ]
