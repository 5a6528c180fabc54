#!/bin/bash
# Builds Velmora and mixes a project to a sound file, without a display; nothing is played.
#   run.sh                          the Welcome project to build/Welcome.wav
#   run.sh OUT [OPTION...]          the Welcome project to OUT
#   run.sh PROJECT OUT [OPTION...]  another project
# Options are those of velmora-render, as are the endings of OUT: .wav and .wma.
set -euo pipefail
start=$PWD
cd "$(dirname "$0")/.."

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
