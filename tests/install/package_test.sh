#!/usr/bin/env bash
# usage: package_test.sh PACKAGES
#
# Installs the Debian packages into an empty root. Runs a script and an example with the installed viewer, builds and
# runs the minimal host with the installed files, and removes the packages.
set -euo pipefail

packages=$1
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
root=$work/root
export QT_QPA_PLATFORM=offscreen

step() { printf -- '-- %s\n' "$*"; }
fail() {
    printf 'FAILED: %s\n' "$*" >&2
    exit 1
}

depends() { dpkg-deb -f "$packages/$1"_*.deb Depends | tr ',' '\n' | sed 's/^ *//'; }

step 'check the dependencies'
for package in vantrel libvantrel-core1; do
    depends $package | sed 's/ *(.*//' | grep -v '^libvantrel' | while read -r name; do
        dpkg-query -W -f='${db:Status-Status}' "$name" 2>/dev/null | grep -q installed || fail "$package depends on $name, which is not installed here"
    done
done
version=$(dpkg-deb -f "$packages"/vantrel_*.deb Version)
for dependency in "vantrel libvantrel-core1 (= $version)" "libvantrel-dev libvantrel-core1 (= $version)" \
    "libvantrel-dev vantrel (= $version)" 'vantrel libqt6core6' 'vantrel libqcustomplot' 'libvantrel-core1 libqt6core6'; do
    depends "${dependency%% *}" | grep -qF -- "${dependency#* }" || fail "${dependency%% *} does not depend on ${dependency#* }"
done
linked=$(dpkg-deb --fsys-tarfile "$packages"/vantrel_*.deb | tar -xO --wildcards '*/libvantrel_python.so' >"$work/plugin.so" &&
    readelf -d "$work/plugin.so" | sed -n 's/.*\[libpython\(.*\)\.so.*/\1/p')
depends vantrel | grep -q "^libpython$linked\b" || fail "vantrel does not depend on Python $linked, which the plugin is linked with"
[ "$(dpkg-deb -f "$packages"/vantrel_*.deb Recommends)" = python3-numpy ] || fail 'vantrel does not recommend NumPy'

step 'install them into an empty root'
mkdir -p "$root/var/lib/dpkg/"{info,updates,triggers}
touch "$root/var/lib/dpkg/"{status,available}
manage() { dpkg --root="$root" --force-not-root --force-depends --force-script-chrootless --log="$work/dpkg.log" "$@" >"$work/dpkg.out" 2>&1 || { cat "$work/dpkg.out"; fail "dpkg $1"; }; }
manage --install "$packages"/*.deb

step 'run a script with the installed viewer'
cat >"$work/script.py" <<'PYTHON'
image = vantrel.Image()
image.alloc(32, 24, 1, 12)
vantrel.new_view_with_image(image, "installed")
vantrel.save_to_file("out.tif")
print(help(vantrel.wait))
PYTHON
"$root/usr/bin/vantrel" run --workdir "$work" "$work/script.py" >"$work/run.out" 2>"$work/run.err" || {
    cat "$work/run.out" "$work/run.err"
    fail 'the installed viewer'
}
[ -s "$work/out.tif" ] || fail 'the installed viewer saved no file'
grep -q 'Wait while the application keeps working' "$work/run.out" || fail 'the installed viewer has no help texts'

step 'run an installed example, which saves into the current folder'
(cd "$work" && "$root/usr/bin/vantrel" run "$root/usr/share/vantrel/examples/first_light.py") >"$work/run.out" 2>"$work/run.err" || {
    cat "$work/run.out" "$work/run.err"
    fail 'first_light.py'
}
[ "$(grep -c 'read back with the same values: True' "$work/run.out")" = 2 ] || fail 'first_light.py read other values'
[ -s "$work/first_light/scene.tif" ] || fail 'first_light.py saved nothing'

step 'build the minimal host with the installed files'
cmake -S "$root/usr/share/vantrel/examples/minimal_host" -B "$work/host" -G Ninja \
    -DCMAKE_PREFIX_PATH="$root/usr" >"$work/cmake.log" 2>&1 && cmake --build "$work/host" >>"$work/cmake.log" 2>&1 || {
    cat "$work/cmake.log"
    fail 'building the minimal host'
}
echo 'print("the answer is", ANSWER)' >"$work/answer.py"
[ "$("$work/host/minimal_host" "$work/answer.py")" = 'the answer is 42' ] || fail 'the minimal host'

step 'configure the minimal host where /bin comes before /usr/bin'
ln -s usr/bin "$root/bin"
ln -s usr/lib "$root/lib"
PATH=$root/bin:$PATH cmake -S "$root/usr/share/vantrel/examples/minimal_host" -B "$work/host2" -G Ninja >"$work/cmake.log" 2>&1 || {
    cat "$work/cmake.log"
    fail 'configuring the minimal host'
}
grep -qxF "Vantrel_DIR:PATH=$root/lib/$(dpkg-architecture -qDEB_HOST_MULTIARCH)/cmake/Vantrel" "$work/host2/CMakeCache.txt" || fail 'other files were found'
rm "$root/bin" "$root/lib"

step 'remove the packages'
manage --purge libvantrel-dev vantrel libvantrel-core1
left=$(find "$root" -not -type d -not -path "$root/var/lib/dpkg/*")
[ -z "$left" ] || fail "left behind: $left"
left=$(find "$root/usr" 2>/dev/null || true)
[ -z "$left" ] || fail "left behind: $left"
