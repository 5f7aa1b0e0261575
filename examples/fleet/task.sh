#!/bin/sh
# One task of COUNT, the first of which has index 0: task.sh INDEX COUNT RECORDINGS DOCUMENTS
#
# Takes each COUNTth recording or capture of the folder. What has a document is done. A recording that fails keeps no
# other from its document, and the task fails in the end. Options for zelkit come by ZELKIT_OPTIONS.
set -eu
index=$1
count=$2
recordings=$3
documents=$4
mkdir -p "$documents"

find "$recordings" -maxdepth 1 -mindepth 1 | sort | awk -v index_="$index" -v count="$count" 'NR % count == index_' | {
    failed=0
    while IFS= read -r recording; do
        document=$documents/${recording##*/}.json
        # shellcheck disable=SC2086 # options are several words
        [ -e "$document" ] ||
            "${ZELKIT:-zelkit}" convert "$recording" -o "$document" ${ZELKIT_OPTIONS:-} </dev/null 2>"$document.log" ||
            failed=1
    done
    exit $failed
}
