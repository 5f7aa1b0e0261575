#!/usr/bin/env bash
# Runs the tasks of examples/fleet by hand, as Slurm and Kubernetes start them: tasks.sh ZELKIT RECORDING
#
# Each recording must be converted by one task and once, whatever its name is and whatever others do.
set -euo pipefail
zelkit=$(realpath "$1")
recording=$(realpath "$2")
fleet=$(realpath "$(dirname "$0")/../../examples/fleet")
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT

fail() {
    echo "fleet: $*"
    exit 1
}

mkdir "$work/recordings" "$work/bin"
for name in a.data a.perf 'b c.data' d.data; do cp "$recording" "$work/recordings/$name"; done
echo 'no recording' >"$work/recordings/broken.data"
ln -s "$fleet/task.sh" "$work/bin/zelkit-task"
cat >"$work/bin/zelkit" <<TEXT
#!/bin/sh
echo "\$2" >>"$work/starts"
exec "$zelkit" "\$@"
TEXT
chmod +x "$work/bin/zelkit"
export PATH=$work/bin:$PATH

# expect_done DOCUMENTS FAILED: what a run of all tasks left, of which that many failed
expect_done() {
    [ "$2" = 1 ] || fail "$2 tasks failed for one broken recording"
    [ "$(sort "$work/starts" | uniq -d)" = "" ] || fail "a recording was converted twice"
    for name in a.data a.perf 'b c.data' d.data; do
        "$zelkit" top "$1/$name.json" -n 1 >/dev/null || fail "no document of $name"
    done
    [ ! -e "$1/broken.data.json" ] || fail "a document of what is no recording"
    rm "$work/starts"
}

failed=0
for index in 0 1; do
    SLURM_SUBMIT_DIR=$fleet SLURM_ARRAY_TASK_ID=$index SLURM_ARRAY_TASK_MAX=1 sh "$fleet/slurm.sh" "$work/recordings" "$work/slurm" ||
        failed=$((failed + 1))
done
expect_done "$work/slurm" $failed
# What has a document is left alone.
"$fleet/task.sh" 0 1 "$work/recordings" "$work/slurm" && fail "the broken recording went unnoticed"
[ "$(cat "$work/starts")" = "$work/recordings/broken.data" ] || fail "done work was done again"
rm "$work/starts"

# The command of the pods, with two of them.
command=$(sed -n 's/^ *- \(exec zelkit-task .*\)/\1/p' "$fleet/kubernetes.yaml" | sed "s, 100 , 2 ,; s,/fleet/,$work/,g")
[ -n "$command" ] || fail "kubernetes.yaml has no command"
failed=0
for index in 0 1; do JOB_COMPLETION_INDEX=$index /bin/sh -euc "$command" || failed=$((failed + 1)); done
expect_done "$work/documents" $failed
echo "tasks: each recording once"
