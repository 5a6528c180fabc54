#!/bin/sh
# Builds the release preset and prints the tables of docs/BENCHMARKS.md: bench/run.sh [ROUNDS]
# or only those of takes, on a sound server of its own, cores idle and busy: bench/run.sh alignment [TAKES [BUFFER...]]
set -eu
cd "$(dirname "$0")/.."
scripts/install-packages.sh bench
cmake --preset release >/dev/null
if [ "${1:-}" = alignment ]; then
    shift
    cmake --build --preset release --target velmora-alignment-bench
    exec build/release/bin/velmora-alignment-bench "$@"
fi
cmake --build --preset release --target velmora-render velmora-decode-bench velmora-load-bench velmora-bus-bench \
    velmora-undo-bench velmora-live-bench velmora-engine-bench velmora-fx-bench
python=python3
/usr/bin/python3 -c 'import numpy' 2>/dev/null && python=/usr/bin/python3
"$python" -B bench/bench.py build/release/bin build/bench "${1:-3}"
build/release/bin/velmora-bus-bench
build/release/bin/velmora-undo-bench
build/release/bin/velmora-live-bench
build/release/bin/velmora-engine-bench
build/release/bin/velmora-fx-bench
