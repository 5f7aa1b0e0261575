#!/usr/bin/env bash
# Takes the ARM build to a device, records and converts there, brings the documents back and checks what they hold:
# check.sh [WORKING_FOLDER]
#
# ZELCONV_DEVICE is the command that runs something on the device. It is called with a folder to bring there, a folder for
# the results and the command; see over_shell.sh for a board reached by ssh or adb:
#
#     DEVICE_SHELL="ssh root@board" ZELCONV_DEVICE=tests/device/over_shell.sh tests/device/check.sh
set -euo pipefail
: "${ZELCONV_DEVICE:?say how to run something on the device, see the head of this script}"
top=$(cd "$(dirname "$0")/../.." && pwd)
work=${1:-$top/out/device}
recordings=${ZELCONV_RECORDINGS:-$top/../shared/recordings}/arm32
rm -rf "$work"
mkdir -p "$work/in" "$work/out"
cp "$top/build/target/zelconv" "$top/build/target/tests/device/device_load" "$top/tests/device/session.sh" "$work/in/"
[ ! -d "$recordings" ] || cp -r "$recordings" "$work/in/recordings"

$ZELCONV_DEVICE "$work/in" "$work/out" 'sh ./session.sh' | tee "$work/session.log"

failures=0
check() { # check WHAT CONDITION...
    local what=$1
    shift
    if "$@"; then
        echo "ok      $what"
    else
        echo "FAILED  $what"
        failures=$((failures + 1))
    fi
}
holds() { grep -q -- "$2" "$work/out/$1"; }
lacks() { ! holds "$@"; }
silent() { [ ! -s "$work/out/$1.log" ]; }


# A row of the functions with an address above 0xbebc2000 and a name of letters: synthetic ones begin with a brace.
kernel_function='\[[0-9]*,"[a-zA-Z_][a-zA-Z0-9_.]*\(\\\\n\)*",3[2-9][0-9]\{8\},'

echo "== what the documents hold"
check "processes of the device's own recording have names" holds own-profile.json '"device_load"'
check "kernel addresses of the device's own recording resolve" holds own-profile.json "$kernel_function"
check "the timechart holds the markers" holds own-trace.json '1,"session","begin, from sh",\]'
check "the last marker, too" holds own-trace.json '2,"session","end",\]'
if [ -d "$recordings" ]; then
    for name in busy_leaf_add busy_leaf_xor 'demo::Worker<unsigned int>::spin(int)'; do
        check "hot functions have names: $name" holds cpu-clock-g-profile.json "\"$name\""
    done
    check "kernel addresses resolve" holds cpu-clock-g-profile.json "$kernel_function"
    for name in TIMER SCHED RCU; do
        ! grep -q "^ *$name:" "$work/out/softirqs" ||
            check "soft interrupts have names: $name" holds tracepoints-timechart.json "\"name\":\"$name\""
    done
    check "without nm there are still libraries" holds no-nm.json '"libraries"'
    check "without nm functions of programs have no names" lacks no-nm.json '"busy_leaf_add'
    check "without /tmp functions have names all the same" holds no-tmp.json '"busy_leaf_add'
    [ ! -e "$work/out/android.json" ] || check "without /bin/sh nm runs all the same" \
        holds android.json '"from_system_shell'
fi
for name in full-disk read-only; do
    check "$name: nothing is said" silent "$name"
    check "$name: with -v 1 one line tells why" holds "$name-verbose.log" '^Document not written to small/'
done
check "without the ftrace text there are no markers" lacks no-tracing.json '"evt"'
check "without the ftrace text nothing is said" lacks no-tracing.log race
[ "$failures" = 0 ]
