#!/usr/bin/env bash
# Takes pictures of every window and message box, in a light and a dark theme, at 1, 1.5 and 2 times the size.
# Usage: scripts/screenshots.sh [FOLDER]   (build/screenshots when not given)
# The pictures of the README and the manual, in docs/images, come from light-1x.
set -euo pipefail
[[ $# -le 1 && ${1-} != -* ]] || { sed -n '3s/^# //p' "$0" >&2; exit 2; }
cd "$(dirname "$(readlink -f "$0")")/.."
folder=$(readlink -m "${1:-build/screenshots}")

scripts/install-packages.sh test
cmake --preset dev
cmake --build --preset dev --target ostrel_screenshots
export PATH="$PWD/build/dev/fakes:$PATH" LC_ALL=C.UTF-8
export QT_QPA_PLATFORM=xcb QT_XCB_GL_INTEGRATION=none QT_LOGGING_RULES=qt.qpa.xcb.warning=false
for theme in light dark; do
    for scale in 1 1.5 2; do
        pictures="$folder/$theme-${scale}x"
        mkdir -p "$pictures"
        QT_SCALE_FACTOR=$scale testkit/windowdriver/with-display.sh \
            build/dev/tests/window/ostrel_screenshots "$pictures" "$theme"
    done
done
echo "The pictures are in $folder"
