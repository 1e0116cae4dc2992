#!/usr/bin/env bash
# Installs the Debian packages that a kind of work needs and that are not there yet.
# Usage: scripts/install-packages.sh KIND   (KIND = run, test, lint, pack or another that scripts/packages.txt lists)
set -euo pipefail
[[ $# -eq 1 && $1 != -* ]] || { sed -n '3s/^# //p' "$0" >&2; exit 2; }
work=$1
cd "$(dirname "$0")/.."

mapfile -t needed < <(awk -v work="$work" '!/^#/ { for (i = 2; i <= NF; i++) if ($i == work) print $1 }' scripts/packages.txt)
if [ ${#needed[@]} -eq 0 ]; then
    echo "install-packages: \"$work\" is no kind of work in scripts/packages.txt" >&2
    exit 2
fi

missing=()
for package in "${needed[@]}"; do
    state=$(dpkg-query -W -f='${db:Status-Status}' "$package" 2>/dev/null || true)
    [ "$state" = installed ] || missing+=("$package")
done
[ ${#missing[@]} -gt 0 ] || exit 0

as_root=()
if [ "$(id -u)" -ne 0 ]; then
    if ! command -v sudo >/dev/null; then
        echo "install-packages: these packages are missing, and only root can install them: ${missing[*]}" >&2
        exit 1
    fi
    as_root=(sudo)
fi

echo "== Installing ${missing[*]}"
apt=("${as_root[@]}" env DEBIAN_FRONTEND=noninteractive apt-get -q -y -o Dpkg::Use-Pty=0)
"${apt[@]}" update
"${apt[@]}" install --no-install-recommends "${missing[@]}"
