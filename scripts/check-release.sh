#!/usr/bin/env bash
# Checks what is released with the program: the package and its descriptions, that it can be made again byte by byte, the
# reference of the public declarations, the reader on Windows, the installed program at work in a fresh Debian 12 root,
# and in a fresh Debian 13 root all tests with Qt 5 and Qt 6, and a package with Qt 6.
# Usage: scripts/check-release.sh [FOLDER]
#   FOLDER  keeps the base systems of the fresh roots for the next time (build/roots)
# A check that cannot be made on this machine is named in the last line.
set -euo pipefail
[[ $# -le 1 && ${1-} != -* ]] || { sed -n '5,7s/^# //p' "$0" >&2; exit 2; }
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
can_make_root() { [ "$(id -u)" -eq 0 ] && scripts/fresh-root.sh "$1" "$roots" true; }

scripts/install-packages.sh release
check "Descriptions for desktops and packages" scripts/check-packaging.sh
check "Reference of the public declarations" doxygen docs/Doxyfile
check "Package" scripts/make-package.sh
package=$(ls build/package/*.deb)

same_commit=()
[ -n "$(git status --porcelain)" ] || same_commit=("$package")
check "The same bytes from another folder" scripts/check-reproducible.sh "${same_commit[@]}"

if scripts/install-packages.sh windows; then
    check "LTCReader for Windows" scripts/windows-programs.sh
else
    left_out+=("LTCReader for Windows (needs the cross compiler and wine)")
fi

if can_make_root bookworm; then
    check "Installed in a fresh root" scripts/check-installed.sh "$package" "$roots"
else
    left_out+=("the installed program in a fresh root (needs root, namespaces and a mirror of Debian)")
fi

if can_make_root trixie; then
    check "All tests on Debian 13" scripts/fresh-root.sh trixie "$roots" ./test
    check "All tests on Debian 13 with Qt 6" scripts/fresh-root.sh trixie "$roots" ./test dev-qt6
    check "Made with Qt 6 and installed on Debian 13" scripts/check-installed.sh --debian13-qt6 "$roots"
else
    left_out+=("all tests on Debian 13, and the package with Qt 6 (needs root, namespaces and a mirror of Debian)")
fi

printf '%s\n' "${durations[@]}"
if [ ${#left_out[@]} -gt 0 ]; then
    printf 'check-release: all is well; NOT CHECKED: %s\n' "${left_out[@]}"
else
    echo "check-release: all is well"
fi
