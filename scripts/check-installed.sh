#!/usr/bin/env bash
# Installs a package into a fresh Debian root and uses it there as a user without rights; needs root.
# Usage: scripts/check-installed.sh PACKAGE FOLDER            on Debian 12, with a package made here
#        scripts/check-installed.sh --debian13-qt6 FOLDER     on Debian 13, with a package made there with Qt 6, twice
#   PACKAGE  the .deb; scripts/make-package.sh makes it
#   FOLDER   keeps the base systems for the next time
set -euo pipefail
[ $# -eq 2 ] || { sed -n '3,6s/^# //p' "$0" >&2; exit 2; }
package=$1
folder=$(realpath -m -- "$2")
[ "$package" = --debian13-qt6 ] || package=$(realpath -- "$package")
cd "$(dirname "$(readlink -f "$0")")/.."

given=$(mktemp -d)
trap 'rm -rf "$given"' EXIT
if [ "$package" = --debian13-qt6 ]; then
    suite=trixie
    scripts/fresh-root.sh "$suite" "$folder" tests/installed/make-for-check.sh release-qt6
    made=$folder/$suite/root/project/build
    cp "$made"/package/*.deb "$given"
    programs=$made/release-qt6
else
    suite=bookworm
    scripts/install-packages.sh test
    cmake --preset dev
    cmake --build --preset dev --parallel "$(nproc)" --target ostrel-demo ostrel_dragsource
    cp "$package" "$given"
    programs=build/dev
fi
cp "$programs/bin/ostrel-demo" "$programs/tests/window/ostrel_dragsource" "$given"
GIVEN=$given scripts/fresh-root.sh "$suite" "$folder" tests/installed/in-fresh-root.sh /root/given
