#!/usr/bin/env bash
# Installs the package in a fresh Debian root and uses it there as a user without rights who has a home folder only.
# Started by scripts/check-installed.sh, as root, in a clone of the project. Usage: in-fresh-root.sh FOLDER
#   FOLDER  holds the package, ostrel-demo and ostrel_dragsource
set -euo pipefail
cd "$(dirname "$(readlink -f "$0")")/../.."
given=$1
programs=/usr/lib/ostrel-timecode-tool

export DEBIAN_FRONTEND=noninteractive
quietly() { "$@" >/tmp/log 2>&1 || { cat /tmp/log >&2; exit 1; }; }
echo "== Installing the package and what it names, nothing else"
quietly apt-get -q update
quietly apt-get -q -y install --no-install-recommends "$given"/*.deb
for file in /usr/bin/ostrel-timecode-tool /usr/bin/ostrel-batch /usr/bin/LTCReader "$programs"/{LTCReader,ffmpeg,ffprobe}.exe; do
    [ -x "$file" ] || { echo "in-fresh-root: $file is no program" >&2; exit 1; }
done
if ldd "$programs"/* | grep "not found"; then exit 1; fi
LTCReader --version
ostrel-batch --version

echo "== What the test needs: a screen, hands, and the demo with its signal maker"
quietly apt-get -q -y install --no-install-recommends \
    at-spi2-core dbus libltc11 openbox python3-pyatspi x11-utils xdotool xvfb
useradd --create-home --shell /bin/bash dit
install -o dit -d /home/dit/check
install -o dit "$given"/ostrel-demo "$given"/ostrel_dragsource /home/dit/check
cp -r tests testkit /home/dit/check

as_dit() { su - dit -c "$1"; }
echo "== The demo, with the installed tools"
as_dit "export PATH=$programs:\$PATH LC_ALL=C.UTF-8
    check/testkit/windowdriver/with-display.sh check/ostrel-demo demo" | tail -n 20
echo "== The installed program on a screen, as a person uses it"
as_dit "export QT_QPA_PLATFORM=xcb QT_LINUX_ACCESSIBILITY_ALWAYS_ON=1 QT_XCB_GL_INTEGRATION=none LC_ALL=C.UTF-8
    export OSTREL_PROGRAM=/usr/bin/ostrel-timecode-tool OSTREL_DRAG_SOURCE=\$PWD/check/ostrel_dragsource
    check/testkit/windowdriver/with-display.sh dbus-run-session -- check/tests/installed/test_installed.py \$PWD/demo"

echo "== Taking the package away"
quietly apt-get -q -y purge ostrel-timecode-tool
if [ -n "$(find /usr -iname '*ostrel*')" ]; then
    echo "in-fresh-root: files stay behind:" >&2
    find /usr -iname '*ostrel*' >&2
    exit 1
fi
echo "The installed program does its job."
