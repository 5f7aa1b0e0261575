#!/usr/bin/env bash
# Prints which folder includes which, from the includes of the sources, and fails on an arrow that leads upward:
# floors.sh [TOP]
#
# The folders of the engine are layered, and a folder may include only those below it. `run` is two rooms: its ground
# part, which everyone uses, and its roof. The two arrows in `exceptions` lead upward on purpose: a sample asks the
# registry of trace-points for its decoder, and the time base asks for the time of the first sample.
set -euo pipefail
cd "${1:-$(dirname "$0")/..}"

# room: what it may include, beside itself
floors='
base:
ground: base
json: base ground
symbols: base ground json
records: base ground json symbols
timechart: base ground json symbols records
events: base ground json symbols records timechart
roof: base ground json symbols records timechart events
kit/recording:
kit/symbols: kit/recording
kit/document:
kit/layout: kit/recording engine
kit/tracepoints: kit/recording
kit/capture: kit/recording kit/symbols engine
kit/exports: kit/document
kit/verbs: kit/recording kit/symbols kit/document kit/layout kit/tracepoints kit/capture kit/exports engine
viewer/document:
viewer/model: viewer/document
viewer/views: viewer/document viewer/model
viewer/page: viewer/document viewer/model viewer/views
'
exceptions='
PerfRecordSample events
TimeBase records/PerfRecordSample.h
'

# Prints "FILE INCLUDED" for every include of one of the project's own files, paths from the top.
includes() {
    local file name folder
    grep -roE --include='*.h' --include='*.cpp' '^#include "[^"]+"' src kit 2>/dev/null |
        sed -E 's/:#include "([^"]+)"/ \1/' |
        while read -r file name; do
            for folder in "${file%%/*}" src; do
                [ ! -e "$folder/$name" ] || { echo "$file $folder/$name" && break; }
            done
        done || true
    grep -roE --include='*.ts' "from ['\"]\.[^'\"]+['\"]" viewer 2>/dev/null --exclude-dir=node_modules |
        sed -E "s/:from ['\"]([^'\"]+)['\"]/ \1/" |
        while read -r file name; do
            echo "$file $(realpath -m --relative-to=. "$(dirname "$file")/$name")"
        done || true
}

includes | awk -v floors="$floors" -v exceptions="$exceptions" '
    # The room of a file; "" for one that is in none, such as main.cpp.
    function room(path, parts, count) {
        count = split(path, parts, "/")
        if (parts[1] == "src" && parts[2] == "run")
            return parts[3] ~ /^(Settings|ErrorExit|TimeBase|KernelLog)\./ ? "ground" : "roof"
        if (parts[1] == "src") return parts[2]
        if (parts[1] == "kit" && parts[2] == "document" && parts[3] == "exports") return "kit/exports"
        return count > 2 ? parts[1] "/" parts[2] : ""
    }
    # Whether the includes of this file may lead to that one, upward as it is.
    function isWanted(from, to, i) {
        for (i = 1; i <= wantedCount; ++i)
            if (index(from, "/" wantedFrom[i] ".") && index(to, "src/" wantedTo[i]) == 1) return 1
        return 0
    }
    BEGIN {
        count = split(floors, lines, "\n")
        for (i = 1; i <= count; ++i) {
            if (lines[i] == "") continue
            colon = index(lines[i], ":")
            name = substr(lines[i], 1, colon - 1)
            order[++rooms] = name
            known[name] = 1
            below = split(substr(lines[i], colon + 1), names, " ")
            for (n = 1; n <= below; ++n) allowed[name, names[n]] = 1
        }
        count = split(exceptions, lines, "\n")
        for (i = 1; i <= count; ++i)
            if (split(lines[i], names, " ") == 2) {
                wantedFrom[++wantedCount] = names[1]
                wantedTo[wantedCount] = names[2]
            }
    }
    {
        from = room($1)
        to = room($2)
        if (from == "" || to == "" || from == to) next
        if (!(from in known) || !(to in known)) {
            print "no floor is given for " (from in known ? to : from) ": " $1 " includes " $2
            bad = 1
            next
        }
        ++arrows[from, to]
        target = from ~ /^kit/ && to !~ /^kit/ ? "engine" : to
        if (((from, target) in allowed)) next
        if (isWanted($1, $2)) { ++wanted[from, to]; next }
        print "upward: " $1 " includes " $2
        bad = 1
    }
    END {
        for (i = 1; i <= rooms; ++i) {
            line = ""
            for (n = 1; n <= rooms; ++n)
                if ((order[i], order[n]) in arrows)
                    line = line sprintf("  %s %d%s", order[n], arrows[order[i], order[n]],
                                        (order[i], order[n]) in wanted ? " (upward, wanted)" : "")
            if (line != "") printf "%-16s ->%s\n", order[i], line
        }
        if (NR == 0) print "no include was found"
        if (NR == 0 || bad) exit 1
    }'
