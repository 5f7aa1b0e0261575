#!/usr/bin/env bash
# Converts on a worker that has no file of the machine, with symbols from a debuginfod server on loopback, and on a second
# one that has only the first one's cache of symbol lists: debuginfod.sh ZELKIT PROGRAM FUNCTION
#
# PROGRAM spends most of its time in FUNCTION.
set -euo pipefail
zelkit=$(realpath "$1")
program=$(realpath "$2")
function=$3
work=$(mktemp -d)
server=

clean_up() {
    [ -z "$server" ] || kill "$server" 2>/dev/null || true
    rm -rf "$work"
}
trap clean_up EXIT

fail() {
    echo "fleet: $*"
    exit 1
}

# The device's program has no symbols; they are in a file that the server has.
mkdir "$work/served"
objcopy --only-keep-debug "$program" "$work/served/job.debug"
strip -o "$work/job" "$program"
perf record --quiet -e cpu-clock -o "$work/perf.data" -- "$work/job" >"$work/log" 2>&1 || fail "perf: $(cat "$work/log")"
rm "$work/job"

# top NAME: what a worker with that cache folder and no other files shows
top() {
    env -u HOME XDG_CACHE_HOME="$work/$1" DEBUGINFOD_TIMEOUT=5 "$zelkit" top "$work/perf.data" 2>"$work/log"
}

[[ $(top alone) != *"$function"* ]] || fail "$function has a name without a server"
port=$((20000 + $$ % 20000))
debuginfod -F -p "$port" -d :memory: "$work/served" >"$work/server" 2>&1 &
server=$!
export DEBUGINFOD_URLS=http://127.0.0.1:$port
for _ in $(seq 100); do
    [[ $(top first) != *"$function"* ]] || break
    kill -0 "$server" 2>/dev/null || fail "the server ended: $(tail -n 3 "$work/server")"
    # What was not found is remembered for a while.
    rm -rf "$work/first"
    sleep 0.1
done
[[ $(top first) = *"$function"* ]] || fail "no name of $function from the server: $(cat "$work/log")"
kill "$server"
wait "$server" || true
server=
# A worker of the same shared cache, after the server's end.
[[ $(top first) = *"$function"* ]] || fail "the cache has lost $function"
echo "symbols: from debuginfod, then from the cache"
