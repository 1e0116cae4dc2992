#!/usr/bin/env bash
# Builds LTCReader for Windows with Debian's cross compiler, and has it and the Linux one read the same recordings.
# Usage: scripts/windows-programs.sh   (into build/windows; Debian has no libsndfile for Windows, so it is built, too)
set -euo pipefail
[ $# -eq 0 ] || { sed -n '3s/^# //p' "$0" >&2; exit 2; }
cd "$(dirname "$(readlink -f "$0")")/.."
libraries=$PWD/build/windows-libraries
samples=$PWD/build/windows-samples

scripts/install-packages.sh windows
toolchain=(--toolchain "$PWD/cmake/mingw-w64.cmake")

build_libsndfile() {
    local sources=$libraries/sources mirror
    mirror=$(scripts/debian-mirror.sh)
    rm -rf "$sources"
    mkdir -p "$sources/lists/partial"
    sed -n 's/^VERSION_CODENAME=//p' /etc/os-release >"$sources/suite"
    echo "deb-src $mirror $(cat "$sources/suite") main" >"$sources/sources.list"
    local apt=(apt-get -q -o "Dir::Etc::sourcelist=$sources/sources.list" -o Dir::Etc::sourceparts=-
        -o "Dir::State::lists=$sources/lists" -o APT::Sandbox::User=)
    "${apt[@]}" update
    (cd "$sources" && "${apt[@]}" source libsndfile)
    cmake -S "$(echo "$sources"/libsndfile-*/)" -B "$libraries/build" -G Ninja "${toolchain[@]}" \
        -D CMAKE_BUILD_TYPE=Release -D CMAKE_INSTALL_PREFIX="$libraries/installed" \
        -D ENABLE_EXTERNAL_LIBS=OFF -D ENABLE_MPEG=OFF -D ENABLE_CPACK=OFF \
        -D BUILD_PROGRAMS=OFF -D BUILD_EXAMPLES=OFF -D BUILD_TESTING=OFF
    cmake --build "$libraries/build" --parallel "$(nproc)"
    cmake --install "$libraries/build"
}

[ -f "$libraries/installed/lib/pkgconfig/sndfile.pc" ] || build_libsndfile
PKG_CONFIG_LIBDIR=$libraries/installed/lib/pkgconfig cmake --preset windows -D CMAKE_FIND_ROOT_PATH="$libraries/installed"
cmake --build --preset windows --parallel "$(nproc)"
reader=$PWD/build/windows/bin/LTCReader.exe

echo "== The same recordings with both readers"
rm -rf "$samples"
./run samples "$samples"
cmake --build --preset release --target ltcreader
export WINEPREFIX=$libraries/wine WINEDEBUG=-all
wine "$reader" --version
# The words on the error output of both name the file, so only results and exit codes are compared.
result_of() {
    local code=0
    "$@" 2>/dev/null | tr -d '\r' || code=$?
    echo "exit code $code"
}
cd "$samples"
compared=0
found=0
for file in *.mov *.wav *.mp4 *.mxf; do
    ffmpeg -nostdin -v quiet -y -t 3 -i "$file" -map 0:a -c:a pcm_s24le "sound é.wav" || continue # one is broken
    here=$(result_of ../release/bin/LTCReader.exe "sound é.wav")
    there=$(result_of wine "$reader" "sound é.wav")
    if [ "$here" != "$there" ]; then
        printf 'windows-programs: "%s" reads differently:\n%s\n%s\n' "$file" "$here" "$there" >&2
        exit 1
    fi
    compared=$((compared + 1))
    case $here in *Timecode*) found=$((found + 1)) ;; esac
done
echo "$compared recordings read the same, timecode in $found."
[ "$found" -gt 10 ]
