#!/usr/bin/env bash
# usage: lintian_test.sh PACKAGES
#
# Holds every package against the rules of the distribution. The checks of the desktop file are those of its own tool.
set -euo pipefail
command -v lintian >/dev/null || { echo 'lintian is not installed'; exit 0; }
command -v desktop-file-validate >/dev/null || { echo 'desktop-file-validate is not installed'; exit 0; }

status=0
for package in "$1"/*.deb; do
    [ "$(id -u)" = 0 ] && root=--allow-root || root=
    said=$(lintian $root --fail-on error,warning --display-level '>=warning' "$package") || status=1
    [ -z "$said" ] || { printf '%s\n' "$said"; status=1; }
done

desktop=$(mktemp --suffix=.desktop)
trap 'rm -f "$desktop"' EXIT
dpkg-deb --fsys-tarfile "$1"/vantrel_*.deb | tar -xO ./usr/share/applications/vantrel.desktop >"$desktop"
said=$(desktop-file-validate "$desktop") || status=1
[ -z "$said" ] || { printf '%s\n' "$said"; status=1; }
exit $status
