#!/usr/bin/env bash
# Prints the mirror that the packages of this system's own release come from, or the one that DEBIAN_MIRROR names.
# Usage: scripts/debian-mirror.sh
set -euo pipefail
[ $# -eq 0 ] || { sed -n '3s/^# //p' "$0" >&2; exit 2; }

# shellcheck disable=SC1091 # a file of the system
release=$(. /etc/os-release && echo "$VERSION_CODENAME")
# shellcheck disable=SC2016 # apt-get fills these in
mirror=${DEBIAN_MIRROR-$(apt-get indextargets --format '$(REPO_URI) $(RELEASE)' "Created-By: Packages" |
    awk -v release="$release" '$2 == release && !mirror { mirror = $1 } END { print mirror }')}
[ -n "$mirror" ] || { echo "debian-mirror: no package source of $release is set up; name one in DEBIAN_MIRROR" >&2; exit 1; }
echo "$mirror"
