#!/bin/bash
#SBATCH --job-name=day1 --cpus-per-task=4 --requeue --open-mode=append
# Exports one card for each task of an array job. Copy it and change the paths; docs/many-machines.md says more.
# Usage: sbatch --array=0-5 slurm-day.sh
shoot=${SHOOT:-/shoot/day1} edit=${EDIT:-/edit/day1} reports=${REPORTS:-/edit/reports}
cards=("$shoot"/CARD*)
card=${cards[$SLURM_ARRAY_TASK_ID]}
exec ostrel-batch export --quiet --resume --jobs 4 --to "$edit" --video-type "${TYPE:-mov-pass}" \
    --report "$reports/${card##*/}.json" "$card"
