# Configuring and compiling in the build folder.

# cached NAME: the value of a variable in the configured build.
cached() {
    [ ! -f "$build/CMakeCache.txt" ] || sed -n "s/^$1:[A-Z]*=//p" "$build/CMakeCache.txt"
}

# ---- the build folder ----

# open_build_folder COMMAND: makes sure that the build folder can be written, and keeps other calls out of it. Returns 1
# if it cannot be written but holds a build that is up to date.
open_build_folder() {
    local foreign
    if ! mkdir -p "$build" 2>/dev/null || [ ! -w "$build" ]; then
        ! is_built_from_these_sources || return 1
        refuse_build_folder
    fi
    foreign=$(find "$build" -path '*/tests/scratch' -prune -o ! -user "$EUID" ! -type l ! -writable -print -quit 2>/dev/null) || true
    if [ -e "$foreign" ]; then
        ! is_built_from_these_sources || return 1
        refuse_build_folder "$foreign"
    fi
    { exec 9>>"$build/lock"; } 2>/dev/null || refuse_full_disk
    if ! flock -n 9; then
        say "another ./vantrel is at work in $build; waiting for it to finish"
        run_job flock 9 || true # a file system without locks: go on
    fi
}

close_build_folder() { exec 9>&-; }

# For a folder whose stamp cannot be renewed: files that were only copied here are newer in their state, but not in their
# content.
is_built_from_these_sources() {
    local changed
    [ -x "$build/bin/vantrel" ] && [ -f "$stamp" ] || return 1
    find_sources
    changed=$(find "${sources[@]}" -type f -newer "$stamp" -print -quit)
    [ -z "$changed" ]
}

refuse_build_folder() {
    local folder=$build owner
    [ -d "$folder" ] || folder=$root
    owner=$(stat -c %U -- "${1:-$folder}")
    if [ -n "${1:-}" ] || { [ "$owner" != "$(id -un)" ] && [ -d "$build" ]; }; then
        fail "the build in $build was made by $owner and is not up to date; build it as $owner, or make it yours: sudo chown -R $(id -un) '$build'"
    fi
    if [ -x "$build/bin/vantrel" ]; then
        fail "the build in $build is not up to date, and the folder cannot be written; copy the checkout to a folder of your own and call ./vantrel there"
    fi
    fail "the program is not built, and $folder cannot be written; copy the checkout to a folder of your own and call ./vantrel there"
}

# is_disk_full LOG FOLDER...: whether a step that failed says so, or a disk has less than a megabyte left.
is_disk_full() {
    local log=$1 folder left
    shift
    ! grep -qi 'no space left on device\|not enough free space\|have enough free space\|disk quota exceeded' "$log" 2>/dev/null || return 0
    for folder in "$@"; do
        left=$(df -Pk -- "$folder" 2>/dev/null | awk 'NR == 2 {print $4}')
        [ "${left:-9999}" -ge 1024 ] || return 0
    done
    return 1
}

refuse_full_disk() {
    fail "the disk with $build is full ($(df -Ph -- "$build" | awk 'NR == 2 {print $4}') free); make room, then run the same command again"
}

# ---- configuring ----

configure() {
    local testing=$1 log=$build/configure.log fresh=() options=()
    if [ -f "$build/configuring" ] || { [ -f "$build/CMakeCache.txt" ] && [ "$(cached CMAKE_HOME_DIRECTORY)" != "$root" ]; }; then
        # An earlier call was interrupted, or the checkout was moved: what CMake found then cannot be relied on.
        fresh=(--fresh)
    elif [ -f "$build/build.ninja" ] && is_configured_for "$testing"; then
        return 0
    fi
    [ -z "$VANTREL_PYTHON_ROOT" ] || options+=(-DVANTREL_PYTHON_ROOT="${python_root:-/usr}")
    [ ${#fresh[@]} = 0 ] || [ -z "$python_root" ] || options=(-DVANTREL_PYTHON_ROOT="$python_root")
    touch "$build/configuring" || refuse_full_disk
    say "configuring"
    run_job run_configure "$log" "${fresh[@]}" --preset "$preset" -DBUILD_TESTING="$testing" "${options[@]}" || {
        ! is_disk_full "$log" "$build" || refuse_full_disk
        grep -A4 'CMake Error' "$log" >&2 || tail -n 20 "$log" >&2
        fail "configuring failed; the lines above say why. When the cause is removed, run the same command again ($log has the full output)"
    }
    rm -f "$build/configuring"
}

is_configured_for() {
    [ "$1" = OFF ] || [ "$(cached BUILD_TESTING)" = ON ] || return 1
    [ -z "$VANTREL_PYTHON_ROOT" ] || [ "$(cached VANTREL_PYTHON_ROOT)" = "${python_root:-/usr}" ]
}

run_configure() {
    local log=$1
    shift
    cd "$root" && cmake "$@" >"$log" 2>&1
}

# ---- compiling ----

compile() {
    local log=$build/build.log damaged
    if [ ! -f "$build/built" ]; then
        say "building; the first build takes some minutes"
    fi
    rm -f "$stamp"
    printf '%s\n%s\n' "$root" "$(cached VANTREL_PYTHON_ROOT)" 2>/dev/null >"$stamp.new" || refuse_full_disk
    # A machine that was switched off can leave files that are cut off: make them again, once. The linker refuses them
    # all but the empty ones.
    find "$build" -path '*/CMakeFiles/*' -name '*.o' -size 0 -delete
    if ! run_build "$log" "$@"; then
        damaged=$(sed -nE 's/^(\S*ld: |error: )*([^ :]+\.(o|a|so)[.0-9]*): .*(not recognized|truncated|too short|wrong format|malformed|is empty).*/\2/p' "$log" | sort -u)
        [ -n "$damaged" ] || explain_build_failure "$log"
        say "some files of an earlier build are damaged; making them again"
        (cd "$build" && xargs -d '\n' rm -f <<<"$damaged")
        run_build "$log" "$@" || explain_build_failure "$log"
    fi
    touch "$build/built"
    mv "$stamp.new" "$stamp"
}

# run_build LOG TARGET...
run_build() {
    begin_progress
    run_job run_compiler "$@" || {
        clear_progress
        return 1
    }
    clear_progress
}

run_compiler() {
    local log=$1
    shift
    NINJA_STATUS='[%f/%t] ' cmake --build "$build" --target "$@" 2>&1 9>&- | follow_ninja "$log"
}

# Keeps the output of the build and shows Ninja's counter.
follow_ninja() {
    local line done_steps all_steps what
    while IFS= read -r line || [ -n "$line" ]; do
        printf '%s\n' "$line" 2>/dev/null
        if [[ $line =~ ^\[([0-9]+)/([0-9]+)\]\ (.*) ]]; then
            done_steps=${BASH_REMATCH[1]} all_steps=${BASH_REMATCH[2]} what=${BASH_REMATCH[3]}
            # The steps before the counted ones: looking for new files and configuring.
            [[ $what != *globbed* ]] || continue
            progress $((done_steps * 100 / all_steps)) "building [$done_steps/$all_steps] ${what##*/}"
        fi
    done >"$log"
}

explain_build_failure() {
    local log=$1 lines
    ! is_disk_full "$log" "$build" || refuse_full_disk
    if grep -q 'Killed signal terminated program\|internal compiler error: Killed\|virtual memory exhausted\|out of memory' "$log"; then
        fail "the compiler ran out of memory; build with one job at a time: CMAKE_BUILD_PARALLEL_LEVEL=1 ./vantrel build ($log has the full output)"
    fi
    lines=$(grep -E -A6 '(^|[^[:alnum:]])(fatal )?error: |CMake Error|undefined reference|multiple definition|cannot find ' "$log" |
        grep -v '^ninja: \|^FAILED: \|^/usr/bin/c++ \|^/usr/bin/ccache \|^/usr/bin/cmake -E env \|^\[[0-9]*/[0-9]*\] ' | head -n 40) || true
    printf '%s\n' "${lines:-$(tail -n 20 "$log")}" >&2
    fail "building failed; the lines above say why. Correct what they name, then run the same command again ($log has the full output)"
}

# ---- both ----

# make_product [PACKAGE...], make_everything [PACKAGE...]: install, configure and build what is missing.
# The arguments of the call must have been checked.
make_product() {
    check_before_building
    open_build_folder || return 0
    if ! is_up_to_date || { [ $# -gt 0 ] && [ -n "$(missing_packages "$@")" ]; }; then
        mapfile -t packages < <(product_packages)
        require_packages "${packages[@]}" "$@"
        configure OFF
        compile product
    fi
    close_build_folder
}

make_everything() {
    check_before_building
    open_build_folder || refuse_build_folder
    mapfile -t packages < <(product_packages)
    require_packages "${packages[@]}" "${test_packages[@]}" "$@"
    configure ON
    compile all
    close_build_folder
}

check_before_building() {
    VANTREL_PYTHON_ROOT=${VANTREL_PYTHON_ROOT:-}
    check_preset
    check_system
    check_python
}
