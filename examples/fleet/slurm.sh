#!/bin/sh
# One task of an array, submitted from this folder: sbatch --array=0-999%50 slurm.sh RECORDINGS DOCUMENTS
#SBATCH --cpus-per-task=1
#SBATCH --mem=1G
#SBATCH --requeue
set -eu
exec "$SLURM_SUBMIT_DIR/task.sh" "$SLURM_ARRAY_TASK_ID" $((SLURM_ARRAY_TASK_MAX + 1)) "$@"
