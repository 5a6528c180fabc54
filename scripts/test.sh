#!/bin/bash
# Builds and tests everything; `test.sh quick` stops after the tests of the development build.
set -euo pipefail
cd "$(dirname "$0")/.."
scope=${1:-all}
if [[ $scope != all && $scope != quick ]]; then
    echo "usage: $0 [quick]" >&2
    exit 2
fi

step() { printf '\n== %s (%d s)\n' "$1" "$SECONDS"; }
run() { ctest --preset "$1" --no-tests=error "${@:2}"; }

scripts/install-packages.sh test

step "Development build"
scripts/build.sh dev
step "All tests"
run dev
if [[ $scope == quick ]]; then
    step "Done, quick scope"
    exit
fi

step "Address and undefined behaviour sanitizers"
scripts/build.sh asan-ubsan
run asan-ubsan -L 'unit|golden|ui'

step "Thread sanitizer"
scripts/build.sh tsan stress_programs device_programs
run tsan -L 'stress|device'

step "Format, layers, clang-tidy"
scripts/check.sh

step "All passed"
