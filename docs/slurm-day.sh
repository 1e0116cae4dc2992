#!/bin/bash
#SBATCH --job-name=day1 --cpus-per-task=4 --requeue --open-mode=append
# Exports one card for each task of an array job. Copy it and change the paths; docs/many-machines.md says more.
# Usage: sbatch --array=0-5 slurm-day.sh
cards=(/shoot/day1/CARD*)
card=${cards[$SLURM_ARRAY_TASK_ID]}
exec ostrel-batch export --quiet --resume --jobs 4 --to /edit/day1 --video-type mov-pass \
    --report "/edit/reports/${card##*/}.json" "$card"
