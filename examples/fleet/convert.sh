#!/usr/bin/env bash
# Converts every recording and capture of a folder, on several hosts if a file names them:
#     convert.sh RECORDINGS DOCUMENTS [SSHLOGINFILE]
#
# Both folders are seen by all hosts under the same path. DOCUMENTS/jobs.log is GNU parallel's list of what was done; a
# second run does what is missing or failed, and nothing else. A host that no longer answers loses its jobs to the others.
# Options for zelkit, such as --symbols, come by ZELKIT_OPTIONS; `zelkit` must be on the PATH of each host, or be named by ZELKIT.
set -euo pipefail
recordings=$(realpath "$1")
documents=$(realpath -m "$2")
mkdir -p "$documents"

hosts=()
[ -z "${3:-}" ] || hosts=(--sshloginfile "$3")
# A host that does not respond is dropped after ten seconds.
export PARALLEL_SSH="ssh -o BatchMode=yes -o ServerAliveInterval=5 -o ServerAliveCountMax=2 ${FLEET_SSH_OPTIONS:-}"

# {/} is the name of the recording in its folder; without its ending two could be one. zelkit renames a document when it is whole.
find "$recordings" -maxdepth 1 -mindepth 1 -print0 | sort -z |
    parallel --null --joblog "$documents/jobs.log" --resume-failed --retries 3 "${hosts[@]}" \
        "${ZELKIT:-zelkit}" convert {} -o "$documents/{/}.json" "${ZELKIT_OPTIONS:-}" "2>" "$documents/{/}.json.log"
