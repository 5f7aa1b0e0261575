#!/usr/bin/env bash
# make_documents.sh FOLDER: the documents of the page's tests: the demo's, and a real machine's if recordings are available
set -euo pipefail
folder=$1
recordings=${ZELCONV_RECORDINGS:-../shared/recordings}/arm32
convert="build/dev/examples/convert_for_machine examples/machine"
mkdir -p "$folder"

$convert -b 5 -p build/dev/examples -i build/dev/examples/profile.data -o "$folder/profile.json"
ZELVIEW_CONFIG=examples/config DOCUMENT_ROOT=examples/www \
    $convert -t -q -b 2 -i build/dev/examples/timechart.data -o "$folder/timechart.json"

[ -e "$recordings" ] || exit 0
build/dev/zelconv -b 5 -p "$recordings/rootfs" -i "$recordings/cpu-clock-g.data" -o "$folder/arm-profile.json" 2>/dev/null
kern_ver=6.1 build/dev/zelconv -t -b 5 -i "$recordings/tracepoints.data" -o "$folder/arm-timechart.json" >/dev/null
