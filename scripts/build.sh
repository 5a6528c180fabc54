#!/bin/bash
# Configures and builds: build.sh [PRESET [TARGET...]]. Programs and libraries land in build/PRESET/bin.
set -euo pipefail
cd "$(dirname "$0")/.."
preset=${1:-release}
targets=("${@:2}")

scripts/install-packages.sh build
# Checkouts in other folders share what is compiled.
export CCACHE_BASEDIR=${CCACHE_BASEDIR:-$PWD} CCACHE_NOHASHDIR=1
cmake --preset "$preset" >/dev/null
cmake --build --preset "$preset" ${targets[@]+--target "${targets[@]}"}
