#!/bin/bash
# Builds Velmora and shows it, or mixes a project to a sound file.
#   run.sh                          the window with the Welcome project; without a display, its mix in build/Welcome.wav
#   run.sh OUT [OPTION...]          mixes the Welcome project to OUT
#   run.sh PROJECT OUT [OPTION...]  mixes another project
# Mixing plays nothing. Options are those of velmora-render, as are the endings of OUT: .wav and .wma.
set -euo pipefail
start=$PWD
cd "$(dirname "$0")/.."

if (($# == 0)) && [[ -n ${DISPLAY:-}${WAYLAND_DISPLAY:-} ]]; then
    scripts/build.sh release velmora
    # A copy, which may be played with.
    mkdir -p build/Welcome
    cp -rn resources/examples/Welcome* build/Welcome
    exec build/release/bin/velmora "build/Welcome/Welcome (Bar style).audioproj"
fi
scripts/build.sh release velmora-render

project="$PWD/resources/examples/Welcome (Bar style).audioproj"
out="$PWD/build/Welcome.wav"
render="$PWD/build/release/bin/velmora-render"
cd "$start"
names=()
while (($#)) && [[ $1 != -* ]] && ((${#names[@]} < 2)); do
    names+=("$1")
    shift
done
case ${#names[@]} in
1) out=${names[0]} ;;
2) project=${names[0]} out=${names[1]} ;;
esac

began=$(date +%s%N)
"$render" "$project" "$out" "$@"
took=$((($(date +%s%N) - began) / 1000000))
printf 'The mix is in %s (made in %d.%03d s).\n' "$(realpath "$out")" $((took / 1000)) $((took % 1000))
