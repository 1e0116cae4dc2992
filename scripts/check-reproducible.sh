#!/usr/bin/env bash
# Builds the package from two clones in two folders and compares them byte by byte.
# Usage: scripts/check-reproducible.sh
set -euo pipefail
project=$(cd "$(dirname "$(readlink -f "$0")")/.." && pwd)

work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
packages=()
for folder in "$work/one" "$work/a longer name/two"; do
    git clone --quiet "$project" "$folder"
    "$folder/scripts/make-package.sh" >"$work/log" 2>&1 || { cat "$work/log" >&2; exit 1; }
    packages+=("$(ls "$folder"/build/package/*.deb)")
done
sha256sum "${packages[@]}"
cmp "${packages[@]}"
echo "Both packages are the same."
