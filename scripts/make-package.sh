#!/usr/bin/env bash
# Builds the Debian package into build/package and checks it. File times are those of the changelog.
# Usage: scripts/make-package.sh [release|release-qt6]   (release-qt6 = with Qt 6)
set -euo pipefail
[[ $# -le 1 && ${1-release} =~ ^release(-qt6)?$ ]] || { sed -n '3s/^# //p' "$0" >&2; exit 2; }
preset=${1-release}
cd "$(dirname "$(readlink -f "$0")")/.."

scripts/install-packages.sh pack
[ "$preset" = release ] || scripts/install-packages.sh qt6
SOURCE_DATE_EPOCH=$(dpkg-parsechangelog --file packaging/linux/changelog --show-field Timestamp)
export SOURCE_DATE_EPOCH

cmake --preset "$preset" -B build/package -D BUILD_TESTING=OFF
cmake --build build/package --parallel "$(nproc)"
scripts/check-hardening.sh --release build/package/bin/*.exe build/package/bin/ostrel-timecode-tool
rm -f build/package/*.deb
(umask 022 && cpack --config build/package/CPackConfig.cmake)
package=$(ls build/package/*.deb)
lintian --allow-root --fail-on error "$package"
dpkg-deb --info "$package"
echo "The package: $package"
