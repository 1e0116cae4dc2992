#!/usr/bin/env bash
# Checks that each test that docs/reliability.md names is there. Usage: check-table.sh
set -euo pipefail
cd "$(dirname "$(readlink -f "$0")")/../.."

missing=0
found=0
while read -r name; do
    case $name in
        tst_*) pattern="(ostrel_add_(test|monkey)\\(|NAME )$name\\b" ;;
        *) pattern="::$name\\(\\)" ;;
    esac
    if grep -rqE "$pattern" tests --include='tst_*.cpp' --include=CMakeLists.txt; then
        found=$((found + 1))
    else
        echo "check-table: there is no test \"$name\"" >&2
        missing=$((missing + 1))
    fi
done < <(grep '^|' docs/reliability.md | grep -oE "\`(tst_[a-z]+|[a-z]+[A-Z][A-Za-z]+)\`" | tr -d '`' | sort -u)
echo "check-table: $found tests are there, $missing are missing"
[ "$missing" -eq 0 ] && [ "$found" -gt 0 ]
