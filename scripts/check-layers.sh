#!/usr/bin/env bash
# Checks that every #include points down: from a folder to itself or to one of a lower layer.
# Usage: scripts/check-layers.sh
set -euo pipefail
[ $# -eq 0 ] || { sed -n '3s/^# //p' "$0" >&2; exit 2; }
cd "$(dirname "$(readlink -f "$0")")/.."

# One layer a line, the lowest first. Folders of one layer do not know each other, so there are no cycles. A folder that
# is not listed belongs to the listed one that it is in.
layers='
timecode ltcreader/maths ltcreader/sound
ltcreader/frame ltcreader/frontend
ltcreader/edge ltcreader/sync
ltcreader/decision
ltcreader/verification
ltcreader/decoder
ltcreader
app/records process widgets tooladapter testkit/signals testkit/windowdriver
ffmpeg ltc update testkit/media testkit/faketools testkit/recordings
control filelist demo/samples
app batch
testkit/fixtures
demo
bench/support
bench/ltc bench/realtools bench/reader bench/window
tests
'

git grep -nE '^#include "[^"]*/' -- '*.cpp' '*.h' | awk -v layers="$layers" '
BEGIN {
    count = split(layers, lines, "\n")
    for (i = 1; i <= count; ++i) {
        folders = split(lines[i], names, " ")
        for (j = 1; j <= folders; ++j)
            layer[names[j]] = i
    }
}
function folderOf(path) { # the listed one that it is in
    while (sub(/\/[^\/]*$/, "", path))
        if (path in layer)
            return path
    return ""
}
{
    split($0, parts, "\"")
    from = folderOf(substr($0, 1, index($0, ":") - 1))
    to = folderOf(parts[2])
    if (from == "" || to == "" || (from != to && layer[from] <= layer[to])) {
        print
        bad = 1
    }
}
END { exit bad }' || {
    echo "check-layers: the lines above include from a folder that is not below theirs" >&2
    exit 1
}
