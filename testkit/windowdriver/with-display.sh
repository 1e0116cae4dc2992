#!/usr/bin/env bash
# Runs a command on a virtual display of its own, with a window manager. Ends with the command's exit code.
# Usage: with-display.sh COMMAND [ARGUMENT...]
set -euo pipefail

work=$(mktemp -d)
mkdir -m 700 "$work/tmp" "$work/run"
export TMPDIR="$work/tmp" XDG_RUNTIME_DIR="$work/run" # no test meets the files and sockets of another
pids=()
end() {
    for pid in "${pids[@]}"; do kill "$pid" 2>/dev/null || true; done
    wait 2>/dev/null || true
    rm -rf "$work"
}
trap end EXIT

until_true() { # COMMAND...: waits at most 30 s
    for _ in $(seq 300); do
        if "$@" >/dev/null 2>&1; then return; fi
        sleep 0.1
    done
    echo "with-display: waited in vain for: $*" >&2
    exit 1
}

# At 96 dots per inch a pixel of Qt is one of the screen, so that places read from the accessibility tree can be clicked.
Xvfb -displayfd 3 -dpi 96 -screen 0 1600x1000x24 -nolisten tcp -noreset 3>"$work/display" >/dev/null 2>&1 &
pids+=($!)
until_true test -s "$work/display"
DISPLAY=:$(cat "$work/display")
export DISPLAY

openbox --sm-disable >/dev/null 2>&1 3>&- &
pids+=($!)
until_true sh -c 'xprop -root _NET_SUPPORTING_WM_CHECK | grep -q 0x'

"$@"
