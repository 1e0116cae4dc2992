#!/usr/bin/env bash
# Builds the package twice, from one commit in two folders under different surroundings, and compares byte by byte.
# Usage: scripts/check-reproducible.sh [--qt6] [PACKAGE]
#   --qt6    builds with Qt 6
#   PACKAGE  a package of this commit that scripts/make-package.sh has made; stands for the first of the two
set -euo pipefail
preset=release
[ "${1-}" != --qt6 ] || { preset=release-qt6 && shift; }
[[ $# -le 1 && ${1-} != -* ]] || { sed -n '3,5s/^# //p' "$0" >&2; exit 2; }
given=${1:+$(realpath -- "$1")}
project=$(cd "$(dirname "$(readlink -f "$0")")/.." && pwd)
commit=$(git -C "$project" rev-parse HEAD) # the next one may land while the first is built
unset CMAKE_CXX_COMPILER_LAUNCHER          # a cache would compare the first build with itself

work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT

# build FOLDER [VARIABLE=VALUE...]: the path of the package
build() {
    local folder=$1
    shift
    git clone --quiet --no-checkout "$project" "$folder"
    git -C "$folder" checkout --quiet --detach "$commit"
    echo "Building in $folder, which takes some minutes" >&2
    env "$@" "$folder/scripts/make-package.sh" "$preset" >"$work/log" 2>&1 || { cat "$work/log" >&2; exit 1; }
    echo "$folder"/build/package/*.deb
}

first=${given:-$(build "$work/one")}
umask 077
second=$(build "$work/a longer name/two" TZ=Pacific/Auckland LC_ALL=C HOME=/nonexistent)
sha256sum "$first" "$second"
if ! cmp "$first" "$second"; then
    for package in "$first" "$second"; do
        rm -rf "$work/content"
        dpkg-deb --raw-extract "$package" "$work/content"
        (cd "$work/content" && find . -exec ls -ld --time-style=full-iso {} + && find . -type f -exec sha256sum {} +) |
            sort >"$work/$([ "$package" = "$first" ] && echo first || echo second)"
    done
    diff "$work/first" "$work/second" >&2 || true
    exit 1
fi
echo "Both packages are the same."
