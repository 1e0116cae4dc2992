#!/usr/bin/env bash
# Checks that no input that a fuzzer has left is part of the project, and that git ignores those to come.
# Usage: check-leftovers.sh   (ends with 77 outside of a clone)
set -euo pipefail
cd "$(dirname "$(readlink -f "$0")")/../.."

if ! git ls-files --error-unmatch tests/fuzz/check-leftovers.sh >/dev/null 2>&1; then
    echo "check-leftovers: this is no clone"
    exit 77
fi
result=0
for kind in crash leak oom slow-unit timeout; do
    for folder in . tests/fuzz; do
        if ! git check-ignore --quiet --no-index "$folder/$kind-0123"; then
            echo "check-leftovers: git does not ignore $folder/$kind-0123" >&2
            result=1
        fi
    done
    tracked=$(git ls-files -- ":(glob)**/$kind-*" ":(exclude)tests/fuzz/corpus")
    if [ -n "$tracked" ]; then
        echo "check-leftovers: left by a fuzzer: $tracked" >&2
        result=1
    fi
    if git check-ignore --quiet --no-index "tests/fuzz/corpus/wav/$kind-0123"; then
        echo "check-leftovers: git ignores corpus files named $kind-..." >&2
        result=1
    fi
done
exit "$result"
