#!/bin/sh
# Builds the release preset and prints the tables of docs/BENCHMARKS.md: bench/run.sh [ROUNDS]
# or only those of takes' alignment, on a sound server of its own, cores idle and busy:
#                                                                   bench/run.sh alignment [TAKES [BUFFER...]]
# or only how long a take needs to start and an input to be heard:  bench/run.sh recording [TAKES]
# or only those of the window, on a display of its own:             bench/run.sh window [ROUNDS]
set -eu
cd "$(dirname "$0")/.."
scripts/install-packages.sh bench
cmake --preset release >/dev/null
python=python3
/usr/bin/python3 -c 'import numpy' 2>/dev/null && python=/usr/bin/python3
case ${1:-} in
alignment | recording)
    program=velmora-$1-bench
    shift
    cmake --build --preset release --target "$program"
    exec "build/release/bin/$program" "$@"
    ;;
window)
    cmake --build --preset release --target velmora velmora-window-bench velmora-empty-window
    exec "$python" -B bench/window.py build/release/bin build/bench "${2:-9}"
    ;;
esac
cmake --build --preset release --target velmora-render velmora-decode-bench velmora-load-bench velmora-bus-bench \
    velmora-undo-bench velmora-live-bench velmora-engine-bench velmora-fx-bench
"$python" -B bench/bench.py build/release/bin build/bench "${1:-3}"
build/release/bin/velmora-bus-bench
build/release/bin/velmora-undo-bench
build/release/bin/velmora-live-bench
build/release/bin/velmora-engine-bench
build/release/bin/velmora-fx-bench
