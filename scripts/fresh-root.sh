#!/usr/bin/env bash
# Runs a command on a fresh clone of this project in a fresh Debian root; needs root and debootstrap.
# Usage: scripts/fresh-root.sh SUITE FOLDER COMMAND [ARGUMENT...]
#   SUITE    bookworm, trixie, ...
#   FOLDER   keeps the untouched base system for the next time, and the root of the last run
#   COMMAND  starts in the clone, /root/project
# The packages come from the mirror of this system's own, or from the one that DEBIAN_MIRROR names. The clone holds what
# is committed. The files of the folder that GIVEN names are copied to /root/given.
# Mounts and processes of the run end with it.
set -euo pipefail
project=$(cd "$(dirname "$(readlink -f "$0")")/.." && pwd)

[ $# -ge 3 ] || { sed -n '2,9s/^# //p' "$0" >&2; exit 2; }
suite=$1
folder=$(realpath -m -- "$2")
shift 2
base=$folder/$suite-base
root=$folder/$suite

if [ "$(id -u)" -ne 0 ] || ! command -v debootstrap >/dev/null; then
    echo "fresh-root: needs root and debootstrap" >&2
    exit 1
fi

if [ ! -d "$base" ]; then
    mirror=$("$project/scripts/debian-mirror.sh")
    mkdir -p "$folder"
    rm -rf "$base.part"
    debootstrap --variant=minbase "$suite" "$base.part" "$mirror" >&2
    mv "$base.part" "$base"
fi

rm -rf --one-file-system "$root"
cp -a "$base" "$root"
for path in /etc/resolv.conf /etc/apt/apt.conf.d/. /usr/local/share/ca-certificates/.; do
    [ -e "$path" ] && mkdir -p "$root$(dirname "$path")" && cp -aL "$path" "$root$path"
done
git clone --quiet "$project" "$root/root/project"
[ -z "${GIVEN-}" ] || cp -r "$GIVEN" "$root/root/given"

export root
# The single quotes are meant: the inner shell expands.
# shellcheck disable=SC2016
exec unshare --mount --pid --fork --kill-child bash -c '
    set -euo pipefail
    mount --rbind /dev "$root/dev"
    mount --rbind /sys "$root/sys"
    mount -t proc proc "$root/proc"
    mount -t tmpfs tmpfs "$root/dev/shm" 2>/dev/null || true
    exec chroot "$root" /usr/bin/env -i HOME=/root TERM=dumb LANG=C.UTF-8 \
        PATH=/usr/local/sbin:/usr/local/bin:/usr/sbin:/usr/bin:/sbin:/bin \
        bash -c "cd /root/project && exec \"\$@\"" fresh-root "$@"
' fresh-root "$@"
