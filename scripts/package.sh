#!/bin/bash
# Builds the Debian package into build/release/package and says what it needs.
set -euo pipefail
cd "$(dirname "$0")/.."

scripts/install-packages.sh package
scripts/build.sh release programs
cpack --config build/release/CPackConfig.cmake -G DEB >/dev/null
package=$(ls -t build/release/package/*.deb | head -n 1)
depends=$(dpkg-deb -f "$package" Depends)
for library in libavcodec libqt6svg6; do
    if [[ $depends != *$library* ]]; then
        echo "The package does not depend on $library: $depends" >&2
        exit 1
    fi
done
printf '%s (%s)\nneeds %s\n' "$package" "$(du -h "$package" | cut -f 1)" "$depends"
