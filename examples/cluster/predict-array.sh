#!/bin/bash
#SBATCH --job-name=zelvanor
#SBATCH --cpus-per-task=1
#SBATCH --output=%x-%A-%a.log
# One task of an array: its share of the records of a molecule file. Started by submit, which sets INPUT, OUT, CHUNK
# and, for all of zelvanor-predict's other options, OPTIONS.
set -u
task=${SLURM_ARRAY_TASK_ID:?started by sbatch --array, or with this set}
first=$(((task - 1) * CHUNK + 1))
# A task that was requeued goes on where it was. Status 1 is a molecule that failed: its reason is in summary.csv.
zelvanor-predict --quiet --resume --jobs "${SLURM_CPUS_PER_TASK:-1}" --records "$first-$((task * CHUNK))" \
  --out "$OUT/part-$task" ${OPTIONS:-} "$INPUT"
status=$?
[ "$status" -eq 1 ] && exit 0
exit "$status"
