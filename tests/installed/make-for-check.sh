#!/usr/bin/env bash
# Makes the package in a fresh Debian root, checks that it can be made again byte by byte, and builds the programs that
# use it. Started by scripts/check-installed.sh, as root, in a clone of the project. Usage: make-for-check.sh PRESET
set -euo pipefail
cd "$(dirname "$(readlink -f "$0")")/../.."
preset=$1

export DEBIAN_FRONTEND=noninteractive
apt-get -q update
apt-get -q -y install --no-install-recommends git # which comparing two clones needs
scripts/make-package.sh "$preset"
other=()
[ "$preset" = release ] || other=(--qt6)
scripts/check-reproducible.sh "${other[@]}" build/package/*.deb
scripts/install-packages.sh test
cmake --preset "$preset"
cmake --build --preset "$preset" --parallel "$(nproc)" --target ostrel-demo ostrel_dragsource
