#!/bin/bash
# Exports one card for each job, two jobs at a time on each host. Copy it and change hosts and paths;
# docs/many-machines.md says more.
hosts=${HOSTS:-2/host1,2/host2,2/host3}
shoot=${SHOOT:-/shoot/day1} edit=${EDIT:-/edit/day1} reports=${REPORTS:-/edit/reports}
parallel --quote --sshlogin "$hosts" --retries 3 --joblog cards.log \
    ostrel-batch export --quiet --resume --jobs 8 --to "$edit" --video-type "${TYPE:-mov-pass}" \
    --report "$reports/{/}.json" {} ::: "$shoot"/CARD*
exec ostrel-batch join --report "$edit.html" --report "$edit.csv" "$reports"/*.json
