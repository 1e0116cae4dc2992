#!/usr/bin/env bash
# Checks what goes out beside the program: the package and its descriptions, that it can be made again byte by byte, the
# reference of the public declarations, and the installed program at work in a fresh Debian 12 root.
# Usage: scripts/check-release.sh [FOLDER]
#   FOLDER  keeps the base system of the fresh root for the next time (build/roots)
# A check that cannot be made on this machine is named in the last line.
set -euo pipefail
[ $# -le 1 ] || { sed -n '4,6s/^# //p' "$0" >&2; exit 2; }
roots=$(realpath -m -- "${1-$(dirname "$(readlink -f "$0")")/../build/roots}")
cd "$(dirname "$(readlink -f "$0")")/.."

left_out=()
durations=()
check() { # NAME COMMAND...
    local name=$1 start=$SECONDS
    shift
    echo "== $name"
    "$@"
    durations+=("$name: $((SECONDS - start)) s")
}
# Not where the mirror or the right to make namespaces is missing, which says nothing about the program.
can_make_roots() { [ "$(id -u)" -eq 0 ] && scripts/fresh-root.sh bookworm "$roots" true; }

scripts/install-packages.sh release
check "Descriptions for desktops and packages" scripts/check-packaging.sh
check "Reference of the public declarations" doxygen docs/Doxyfile
check "Package" scripts/make-package.sh
package=$(ls build/package/*.deb)

same_commit=()
[ -n "$(git status --porcelain)" ] || same_commit=("$package")
check "The same bytes from another folder" scripts/check-reproducible.sh "${same_commit[@]}"

if can_make_roots; then
    check "Installed in a fresh root" scripts/check-installed.sh "$package" "$roots"
else
    left_out+=("the installed program in a fresh root (needs root, namespaces and a mirror of Debian)")
fi

printf '%s\n' "${durations[@]}"
if [ ${#left_out[@]} -gt 0 ]; then
    printf 'check-release: all is well; NOT CHECKED: %s\n' "${left_out[@]}"
else
    echo "check-release: all is well"
fi
