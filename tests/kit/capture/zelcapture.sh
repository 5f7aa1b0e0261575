#!/usr/bin/env bash
# Runs zelcapture in a shell with a perf of the test's own, whose abilities each case sets: zelcapture.sh ZELCAPTURE SHELL...
set -euo pipefail
zelcapture=$1
shift
shell=("$@")
folder=$(mktemp -d)
trap 'rm -rf "$folder"' EXIT
cd "$folder"

# CANNOT is a pattern of options that this perf does not know.
cat >perf <<'PERF'
#!/bin/sh
case $1 in
    version) echo "perf version 0.0.test" ;;
    script) printf '  1234 (/bin/sh)\n  99 ([kernel.kallsyms])\n  5 (%s)\n  7 (//anon)\n' "$PWD/touched by a sample" ;;
    buildid-list) printf 'abcd /bin/sh\n1234 [kernel.kallsyms]\n5678 /lib/modules/x.ko.xz\n90 /absent\n' ;;
    record)
        case " $* " in *$CANNOT*) echo "cannot do that" >&2; exit 129 ;; esac
        while [ "$1" != -- ]; do
            [ "$1" = -o ] && recording=$2
            shift
        done
        shift
        echo recorded >"$recording"
        "$@"
        ;;
esac
PERF
chmod +x perf
echo elf >'touched by a sample'
export PERF=$folder/perf TMPDIR=$folder

fail() { echo "${shell[*]}: $*" >&2; cat log >&2; exit 1; }

# capture STATUS ARGUMENTS...
capture() {
    local expected=$1 status=0
    shift
    "${shell[@]}" "$zelcapture" "$@" >log 2>&1 || status=$?
    [ $status = "$expected" ] || fail "status $status instead of $expected: $*"
    compgen -G '*.capture.*' >/dev/null && fail "something is left behind: $*"
    return 0
}
said() { grep -qF -e "$1" log || fail "did not say: $1"; }
holds() { tar -xzOf c.tar.gz "./$1" | grep -e "$2" >/dev/null || fail "$1 does not hold $2"; }

export CANNOT=nothing
capture 0 -o c.tar.gz -t 0.01
for name in perf.data kallsyms softirqs uptime uname names commands "files$folder/touched by a sample"; do
    holds "$name" .
done
holds commands '-a --sample-cpu -g -F 499 -e cycles -- sleep 0.01'
[ "$(tar -xzOf c.tar.gz ./names)" = "$(printf '/absent\n/bin/sh\n%s' "$folder/touched by a sample" | LC_ALL=C sort)" ] ||
    fail "other names: $(tar -xzOf c.tar.gz ./names)"
said '1 of the files in "names" could not be copied'
tar -tzf c.tar.gz | grep -q -e probe -e '/\.\.' && fail "too much in the capture"

# A command that fails is recorded all the same, its words as they are.
# shellcheck disable=SC2016  # the inner shell expands it
capture 0 -o c.tar.gz --names-only -F 99 -- sh -c 'echo "$1" >words; exit 3' sh 'two  words'
[ "$(cat words)" = 'two  words' ] || fail "the command had other words"
said 'status 3'
tar -tzf c.tar.gz | grep -q files && fail "files in spite of --names-only"

CANNOT=' cycles ' capture 0 -o c.tar.gz -t 0.01
holds commands '-e cpu-clock --'
CANNOT=' -g ' capture 0 -o c.tar.gz -t 0.01
said 'no back-traces'
CANNOT=' -a ' capture 0 -o c.tar.gz -- true
holds commands 'record --sample-cpu -g'
said 'only the command'
CANNOT=' -a ' capture 2 -o never.tar.gz -t 1
said 'perf_event_paranoid'
CANNOT=freq= capture 2 -o never.tar.gz --both -t 1
said 'one after the other'
PERF=/absent/perf capture 2 -o never.tar.gz -t 1
said '/absent/perf'

for wrong in '' '-t' '-t 1 -- true' '-t x' '-F 0 -t 1' '-F 9a -t 1' '--what -t 1' '-o x.zip -t 1'; do
    # shellcheck disable=SC2086  # a list of words
    capture 1 $wrong
    said usage
done
[ ! -e never.tar.gz ] || fail "a capture of nothing"
