#!/bin/sh
# One task of an array: sbatch --array=0-999%50 slurm.sh RECORDINGS DOCUMENTS
#SBATCH --cpus-per-task=1
#SBATCH --mem=1G
#SBATCH --requeue
set -eu
recordings=$1
documents=$2
count=$((SLURM_ARRAY_TASK_MAX + 1))

# Task N takes recordings N, N + count and so on; what has a document is done.
find "$recordings" -maxdepth 1 -mindepth 1 | sort | awk -v n="$SLURM_ARRAY_TASK_ID" -v count="$count" 'NR % count == n' |
    while read -r recording; do
        name=$(basename "$recording")
        document=$documents/${name%.*}.json
        [ -e "$document" ] || zelkit convert "$recording" -o "$document"
    done
