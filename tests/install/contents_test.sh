#!/usr/bin/env bash
# usage: contents_test.sh PACKAGES SOURCE MULTIARCH
#
# Compares the files in the packages with contents.txt and packaging/shared_files.txt, and the latter with the files that
# are under version control.
set -euo pipefail
packages=$1
source=$2
status=0

# same WHAT EXPECTED ACTUAL: compares two files line by line.
same() {
    diff -u --label "expected $1" --label "actual $1" <(sort "$2") <(sort "$3") || status=1
}
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT

{
    sed "s|@LIB@|usr/lib/$3|" "$(dirname -- "$0")/contents.txt"
    sed -E 's,^(docs/|README),usr/share/doc/vantrel/\1,; t done; s|^|usr/share/vantrel/|; :done; s|^|vantrel |' \
        "$source/packaging/shared_files.txt"
    sed "s|^|libvantrel-dev usr/include/vantrel/|" <(cd "$source/host" && ls ./*.h | sed 's|^\./||')
} >"$work/expected"
for package in "$packages"/*.deb; do
    name=$(dpkg-deb -f "$package" Package)
    dpkg-deb -c "$package" >"$work/list"
    sed -n "s|^[^d].* \./|$name |p" "$work/list" >>"$work/actual"
    # Files belong to root and are open to everyone, and only the programs can be executed.
    grep -vE '^(drwxr-xr-x|-rw-r--r--|lrwxrwxrwx) root/root |^-rwxr-xr-x root/root .* \./usr/(bin/vantrel|share/vantrel/python/vantrel_viewer/no-interpreter)$' "$work/list" && {
        echo "the files of $name above have a wrong owner or mode"
        status=1
    }
done
same 'files in the packages' "$work/expected" "$work/actual"

if tracked=$(git -C "$source" ls-files examples stubs docs python README.md 2>/dev/null); then
    # Scripts beside the pictures make them and are of no use without the sources.
    grep -v '^docs/pictures/.*\.py$' <<<"$tracked" >"$work/tracked"
    same 'packaging/shared_files.txt' "$work/tracked" "$source/packaging/shared_files.txt"
fi
exit $status
