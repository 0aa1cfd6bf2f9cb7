#!/usr/bin/env bash
# usage: make_package.sh BUILD_FOLDER FOLDER
#
# Makes the Debian package in FOLDER and prints its path.
set -euo pipefail
mkdir -p "$2"
cpack --config "$1/CPackConfig.cmake" -B "$2" >"$2/cpack.log" 2>&1 || {
    cat "$2/cpack.log" >&2
    exit 1
}
find "$2" -maxdepth 1 -name '*.deb'
