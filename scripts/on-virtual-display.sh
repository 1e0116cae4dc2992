#!/usr/bin/env bash
# Runs a command on a virtual display of its own. Usage: scripts/on-virtual-display.sh COMMAND [ARGUMENT...]
# Instead of xvfb-run, which waits for ever when the display is ready before it listens for that.
set -euo pipefail
[[ $# -gt 0 && $1 != -* ]] || { sed -n '2s/^# .*Usage/Usage/p' "$0" >&2; exit 2; }

work=$(mktemp -d)
server=
end() {
    [ -z "$server" ] || kill "$server" 2>/dev/null || true
    rm -rf "$work"
}
trap end EXIT

Xvfb -displayfd 3 -dpi 96 -screen 0 1280x1024x24 -nolisten tcp -noreset 3>"$work/display" >/dev/null 2>&1 &
server=$!
for _ in $(seq 300); do
    [ ! -s "$work/display" ] || break
    sleep 0.1
done
if [ ! -s "$work/display" ]; then
    echo "on-virtual-display: Xvfb does not start" >&2
    exit 1
fi
DISPLAY=:$(cat "$work/display")
export DISPLAY

"$@"
