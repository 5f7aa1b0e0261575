#!/usr/bin/env bash
# Merges the profiles of a fleet into one by pprof: merge.sh DOCUMENTS MERGED.pb.gz
set -euo pipefail
documents=$1
merged=$2
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT

find "$documents" -name '*.json' ! -name '*.timechart.json' ! -name '*.layout.json' -print0 |
    parallel --null "${ZELKIT:-zelkit}" export {} --to pprof -o "$work/{/.}.pb.gz"
# In groups of a hundred, so that thousands need neither too much memory nor too long a command line.
while [ "$(find "$work" -name '*.pb.gz' | wc -l)" -gt 1 ]; do
    find "$work" -name '*.pb.gz' -print0 | head -z -n 100 >"$work/heap"
    xargs -0 go tool pprof -proto -symbolize=none -output "$work/sum" <"$work/heap" >/dev/null 2>&1
    xargs -0 rm <"$work/heap"
    mv "$work/sum" "$work/sum.pb.gz"
done
mv "$work"/*.pb.gz "$merged"
