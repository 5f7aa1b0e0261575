#!/usr/bin/env bash
# Converts a folder over two hosts, one of which dies midway: two_hosts.sh ZELKIT RECORDING [COUNT]
#
# The hosts are network namespaces with an sshd each, made here; it takes root. Nothing may be lost or done twice.
set -euo pipefail
zelkit=$(realpath "$1")
recording=$(realpath "$2")
count=${3:-16}
top=$(cd "$(dirname "$0")/../.." && pwd)
work=$(mktemp -d)
prefix=zf$$
run=

fail() {
    echo "fleet: $*"
    exit 1
}

# Some of them end by themselves meanwhile.
kill_host() { ip netns pids "$prefix$1" | xargs -r kill -9 2>/dev/null || true; }

clean_up() {
    local host
    [ -z "$run" ] || kill "$run" 2>/dev/null || true
    for host in 1 2; do
        kill_host $host 2>/dev/null
        ip netns del "$prefix$host" 2>/dev/null || true
    done
    ip link del "${prefix}b" 2>/dev/null || true
    rm -rf "$work"
}
trap clean_up EXIT

start_host() { # start_host NUMBER
    local name=$prefix$1
    ip netns add "$name"
    ip link add "${name}o" type veth peer name eth0 netns "$name"
    ip link set "${name}o" master "${prefix}b" up
    ip -n "$name" addr add "10.213.77.1$1/24" dev eth0
    ip -n "$name" link set eth0 up
    ip -n "$name" link set lo up
    # A home of its own: what a user's shell does at its start is no part of this, and would be killed with the host.
    ip netns exec "$name" /usr/sbin/sshd -f /dev/null -h "$work/key" -o "AuthorizedKeysFile=$work/key.pub" -o StrictModes=no \
        -o "PidFile=none" -o "SetEnv=HOME=$work" -o UsePAM=no -o PermitRootLogin=prohibit-password
}

ssh-keygen -q -t ed25519 -N '' -f "$work/key"
mkdir -p /run/sshd "$work/recordings"
ip link add "${prefix}b" type bridge
ip addr add 10.213.77.1/24 dev "${prefix}b"
ip link set "${prefix}b" up
touch "$work/starts"
start_host 1
start_host 2
printf '2/10.213.77.11\n2/10.213.77.12\n' >"$work/hosts"
for i in $(seq "$count"); do ln "$recording" "$work/recordings/r$i.data" 2>/dev/null || cp "$recording" "$work/recordings/r$i.data"; done

# Logs each start with its host, and takes long enough to be killed.
cat >"$work/zelkit" <<TEXT
#!/bin/sh
echo "\$(hostname -I 2>/dev/null) \$2" >>"$work/starts"
sleep 1
exec "$zelkit" "\$@"
TEXT
chmod +x "$work/zelkit"

export ZELKIT=$work/zelkit
export FLEET_SSH_OPTIONS="-i $work/key -o StrictHostKeyChecking=no -o UserKnownHostsFile=/dev/null -o LogLevel=ERROR"

# tell WHAT START: prints how long the run took since then
tell() {
    awk -v what="$1" -v start="$2" -v end="$EPOCHREALTIME" -v count="$count" -v starts="$(wc -l <"$work/starts")" \
        'BEGIN { printf "%s: %d recordings in %.1f s, %.2f a second, %d begun twice\n",
                 what, count, end - start, count / (end - start), starts - count }'
}

start=$EPOCHREALTIME
"$top/examples/fleet/convert.sh" "$work/recordings" "$work/undisturbed" "$work/hosts"
tell "two hosts" "$start"
: >"$work/starts"

start=$EPOCHREALTIME
"$top/examples/fleet/convert.sh" "$work/recordings" "$work/documents" "$work/hosts" &
run=$!
# The third start on a host with two places: it has done some, and is at work.
while [ "$(grep -cs '^10.213.77.12 ' "$work/starts" || true)" -lt 3 ]; do
    kill -0 $run 2>/dev/null || fail "the run ended too early"
    sleep 0.05
done
kill_host 2
wait "$run" || fail "the run failed"
run=
tell "one of which dies" "$start"

documents=$(find "$work/documents" -name 'r*.json' ! -name '*.layout.json' | wc -l)
[ "$documents" = "$count" ] || fail "$documents documents of $count recordings"
[ "$(tail -n +2 "$work/documents/jobs.log" | awk '$7 == 0 { done[$1]++ } END { for (job in done) n += done[job] == 1; print n + 0 }')" = "$count" ] ||
    fail "a job was not done, or was done twice"
[ "$(wc -l <"$work/starts")" -gt "$count" ] || fail "the host died without a job"
for document in "$work"/documents/r*.json; do
    [[ $document = *.layout.json ]] || "$zelkit" top "$document" -n 1 >/dev/null || fail "$document is not whole"
done

before=$(wc -l <"$work/starts")
"$top/examples/fleet/convert.sh" "$work/recordings" "$work/documents" "$work/hosts"
[ "$(wc -l <"$work/starts")" = "$before" ] || fail "a second run did what was done"

ZELKIT=$zelkit "$top/examples/fleet/merge.sh" "$work/documents" "$work/merged.pb.gz"
one=$("$zelkit" top "$work/documents/r1.data.json" -n 0 | sed -n 's/ samples.*//p')
all=$(HOME=$work go tool pprof -top "$work/merged.pb.gz" 2>/dev/null | sed -n 's/.* of \([0-9]*\) total.*/\1/p')
[ "$all" = $((one * count)) ] || fail "the merged profile has $all samples, not $count times $one"
echo "nothing lost, nothing done twice; merged: $all samples"
