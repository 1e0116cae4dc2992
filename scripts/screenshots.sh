#!/usr/bin/env bash
# Takes pictures of every window and message box, in a light and a dark theme, at single and double size.
# Usage: scripts/screenshots.sh [FOLDER]   (build/screenshots when not given)
set -euo pipefail
cd "$(dirname "$(readlink -f "$0")")/.."
folder=$(readlink -m "${1:-build/screenshots}")

scripts/install-packages.sh test
cmake --preset dev
cmake --build --preset dev --target ostrel_screenshots
for theme in light dark; do
    for scale in 1 2; do
        mkdir -p "$folder/$theme-${scale}x"
        PATH="$PWD/build/dev/fakes:$PATH" QT_QPA_PLATFORM=xcb QT_SCALE_FACTOR=$scale LC_ALL=C.UTF-8 \
            tests/support/with-display.sh build/dev/tests/window/ostrel_screenshots "$folder/$theme-${scale}x" "$theme"
    done
done
echo "The pictures are in $folder"
