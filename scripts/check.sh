#!/bin/bash
# What the compiler does not see: format, include layers, clang-tidy. What clang-tidy passed once is not looked at
# again before it changes.
set -euo pipefail
cd "$(dirname "$0")/.."
scripts/install-packages.sh test

failed=0
mapfile -d '' sources < <(find . \( -path ./build -o -path ./.git \) -prune -o \
    -type f \( -name '*.cpp' -o -name '*.h' \) -print0 | sort -z)
clang-format --dry-run -Werror "${sources[@]}" || failed=1
python3 scripts/check-layers.py || failed=1
python3 scripts/check-tidy.py || failed=1
exit $failed
