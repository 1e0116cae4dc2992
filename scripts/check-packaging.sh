#!/usr/bin/env bash
# Checks the files that describe the program to desktops and packages, and that all name the same version.
# Usage: scripts/check-packaging.sh
set -euo pipefail
[ $# -eq 0 ] || { sed -n '3s/^# //p' "$0" >&2; exit 2; }
cd "$(dirname "$(readlink -f "$0")")/.."

desktop-file-validate packaging/linux/*.desktop
appstreamcli validate --no-net packaging/linux/*.metainfo.xml

version=$(sed -n 's/^project(.* VERSION \([0-9.]*\).*/\1/p' CMakeLists.txt)
number() { sed -n "s/^constexpr uint application$1Version = \([0-9]*\);/\1/p" app/records/applicationinfo.h; }
says() {
    if [ "$2" != "$3" ]; then
        echo "check-packaging: $1 says version \"$2\", CMakeLists.txt says \"$3\"" >&2
        exit 1
    fi
}
says app/records/applicationinfo.h "$(number Major).$(number Minor)" "${version%.*}"
says packaging/linux/changelog "$(sed -n '1s/.*(\(.*\)).*/\1/p' packaging/linux/changelog)" "$version"
says CHANGELOG.md "$(sed -n 's/^## \([0-9]\)/\1/p' CHANGELOG.md | head -n 1)" "$version"
says metainfo "$(sed -n 's/.*<release version="\([^"]*\)".*/\1/p' packaging/linux/*.metainfo.xml | head -n 1)" "$version"
for page in packaging/*.1; do
    says "$page" "$(sed -n 's/^\.TH .*Ostrel Timecode Tool \([0-9.]*\)".*/\1/p' "$page")" "${version%.*}"
done
