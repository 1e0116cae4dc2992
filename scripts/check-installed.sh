#!/usr/bin/env bash
# Installs the package into a fresh Debian 12 root and uses it there as a user without rights; needs root.
# Usage: scripts/check-installed.sh PACKAGE FOLDER
#   PACKAGE  the .deb; scripts/make-package.sh makes it
#   FOLDER   keeps the base system for the next time
set -euo pipefail
[ $# -eq 2 ] || { sed -n '3,5s/^# //p' "$0" >&2; exit 2; }
package=$(realpath -- "$1")
folder=$(realpath -m -- "$2")
cd "$(dirname "$(readlink -f "$0")")/.."

scripts/install-packages.sh test
cmake --preset dev
cmake --build --preset dev --parallel "$(nproc)" --target ostrel-demo ostrel_dragsource

GIVEN=$(mktemp -d)
export GIVEN
trap 'rm -rf "$GIVEN"' EXIT
cp "$package" build/dev/bin/ostrel-demo build/dev/tests/window/ostrel_dragsource "$GIVEN"
scripts/fresh-root.sh bookworm "$folder" tests/installed/in-fresh-root.sh /root/given
