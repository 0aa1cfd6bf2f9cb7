#!/usr/bin/env bash
# usage: refusals_test.sh MAKE_PACKAGES VERSION
#
# Builds of which no package can be made: the sentence names the reason, and no package appears.
set -euo pipefail
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
status=0

# refuses SENTENCE [CACHE LINE...]: the cache of the build has these lines.
refuses() {
    local sentence=$1 said
    shift
    mkdir -p "$work/build"
    [ $# = 0 ] || printf '%s\n' "$@" >"$work/build/CMakeCache.txt"
    if said=$("$make" "$work/build" "$work/packages" 2>&1); then
        echo "not refused: $*"
        status=1
    elif ! grep -qF -- "make_packages: $sentence" <<<"$said" || [ "$(wc -l <<<"$said")" -gt 6 ]; then
        printf 'expected: %s\nactual:   %s\n' "$sentence" "$said"
        status=1
    elif compgen -G "$work/packages/*.deb" >/dev/null; then
        echo "made a package in spite of: $sentence"
        status=1
    fi
    rm -rf "$work/build"
}

make=$1
good=(VANTREL_SANITIZE:STRING= VANTREL_PYTHON_ROOT:PATH=/usr "CMAKE_PROJECT_VERSION:STATIC=$2")
refuses "$work/build is not a build folder"
refuses "$work/build is a build with sanitizers" VANTREL_SANITIZE:STRING=address "${good[@]:1}"
refuses "$work/build embeds the Python below /opt/python3.8" "${good[0]}" VANTREL_PYTHON_ROOT:PATH=/opt/python3.8 "${good[2]}"
refuses "packaging/debian/changelog describes version $2, but the build is version 99.0" "${good[@]:0:2}" CMAKE_PROJECT_VERSION:STATIC=99.0
refuses 'installing failed' "${good[@]}"

mkdir "$work/bin"
ln -s "$(command -v dirname)" "$work/bin"
mkdir "$work/build"
touch "$work/build/CMakeCache.txt"
said=$(PATH=$work/bin "$BASH" "$make" "$work/build" 2>&1) || true
[ "$said" = 'make_packages: dpkg-shlibdeps is missing; install dpkg-dev, binutils, cmake and python3' ] || {
    printf 'without tools: %s\n' "$said"
    status=1
}
exit $status
