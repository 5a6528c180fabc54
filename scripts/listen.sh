#!/bin/bash
# Renders every effect and every pack of resources/presets on the example's voice and music, for ears and for figures:
#   listen.sh FOLDER
# FOLDER gets the WAV files; a table of what was measured is printed.
set -euo pipefail
[[ $# == 1 ]] || { sed -n '2,4s/^# //p' "$0" >&2 && exit 2; }
into=$(realpath -m "$1")
cd "$(dirname "$0")/.."
scripts/install-packages.sh test
scripts/build.sh release velmora-render
python=python3
/usr/bin/python3 -c 'import numpy' 2>/dev/null && python=/usr/bin/python3
exec "$python" -B scripts/listening_set.py build/release/bin/velmora-render "$into"
