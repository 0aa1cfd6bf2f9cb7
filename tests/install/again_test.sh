#!/usr/bin/env bash
# usage: again_test.sh MAKE_PACKAGES BUILD_FOLDER PACKAGES
#
# Makes the packages a second time, in a folder with a relative path, and compares them byte by byte with the first.
# make_packages prints a path for each package, and removes the packages of an older version from the folder.
set -euo pipefail
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
cd "$work"
mkdir again
touch again/vantrel_0.0.1_amd64.deb again/of-someone-else.deb
(umask 077 && "$1" "$2" again) >printed
rm again/of-someone-else.deb
diff <(sort printed) <(find "$work/again" -type f | sort)
diff -r again "$3"
