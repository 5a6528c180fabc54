#!/bin/bash
# Installs the Debian packages that a script needs, if any is missing: install-packages.sh build|test|bench|package|screenshots
set -euo pipefail

build=(g++ cmake ninja-build ccache pkg-config python3 libavformat-dev libavcodec-dev libavutil-dev libswresample-dev
    libsoxr-dev libsndfile1-dev libreaderwriterqueue-dev libcubeb-dev libasound2-dev libgtest-dev libgmock-dev libbenchmark-dev
    qt6-base-dev qt6-svg-dev libfreetype-dev libxcb1-dev)
test=("${build[@]}" sox ffmpeg python3-numpy pulseaudio pulseaudio-utils clang-format clang-tidy fonts-inter
    fonts-dejavu-core xvfb openbox xdotool x11-utils imagemagick
    dbus-daemon at-spi2-core gir1.2-atspi-2.0 python3-gi)
bench=("${test[@]}" ecasound tap-plugins swh-plugins caps)
package=("${build[@]}" file dpkg-dev)
screenshots=("${build[@]}" xvfb openbox xdotool imagemagick fonts-inter fonts-dejavu-core)

case "${1:-}" in
build) wanted=("${build[@]}") ;;
test) wanted=("${test[@]}") ;;
bench) wanted=("${bench[@]}") ;;
package) wanted=("${package[@]}") ;;
screenshots) wanted=("${screenshots[@]}") ;;
*)
    echo "usage: $0 build|test|bench|package|screenshots" >&2
    exit 2
    ;;
esac

if ! command -v dpkg-query >/dev/null; then
    echo "This is no Debian system. Please install what these packages hold: ${wanted[*]}" >&2
    exit 0
fi

missing=()
for package in "${wanted[@]}"; do
    state=$(dpkg-query -W -f '${db:Status-Status}\n' "$package" 2>/dev/null | head -n 1) || true
    [[ $state == installed ]] || missing+=("$package")
done
((${#missing[@]})) || exit 0

asRoot=()
if ((EUID != 0)); then
    if ! command -v sudo >/dev/null; then
        echo "Packages are missing. Please install them as root:" >&2
        echo "    apt-get install --no-install-recommends ${missing[*]}" >&2
        exit 1
    fi
    asRoot=(sudo)
fi
echo "Installing ${missing[*]}"
"${asRoot[@]}" apt-get update -q
"${asRoot[@]}" env DEBIAN_FRONTEND=noninteractive apt-get install -y -q --no-install-recommends "${missing[@]}"
