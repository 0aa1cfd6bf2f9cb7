# The distribution's packages that a build needs, and the Python that it is for.

compiler_packages=(
    g++ cmake ninja-build qt6-base-dev libqcustomplot-dev libqscintilla2-qt6-dev zlib1g-dev libxcb1-dev libx11-dev
    libopencv-core-dev libopencv-imgproc-dev libopencv-imgcodecs-dev libopencv-videoio-dev fonts-dejavu-core
)
python_packages=(python3-dev python3-numpy) # the distribution's Python
test_packages=(
    libgtest-dev libgmock-dev dpkg-dev file mypy python3 python3-numpy
    lintian desktop-file-utils groff-base xvfb openbox xdotool
)
picture_packages=(xvfb xauth imagemagick xdotool)
bench_packages=(python3-pil python3-opencv python3-matplotlib)

oldest_qt=6.4
systems="Debian 12 and Ubuntu 24.04 do, and newer ones"

product_packages() {
    printf '%s\n' "${compiler_packages[@]}"
    [ -n "$python_root" ] || printf '%s\n' "${python_packages[@]}"
}

# ---- Python ----

# The root of the Python to embed as an absolute path, or empty for the distribution's.
python_root=

offered_pythons() { sed -n 's/^set(vantrel_offered_pythons \(.*\))/\1/p' "$root/cmake/VantrelPython.cmake"; }

is_offered() { [[ " $(offered_pythons) " = *" $1 "* ]]; }

offered_text() { offered_pythons | tr ' ' '\n' | sort -V | paste -sd ' ' | sed 's/ /, /g; s/\(.*\), /\1 or /'; }

# Takes the root from the environment, or else from the configured build. The build configuration looks at the root
# in the same way, but only after CMake and the other packages have been installed.
check_python() {
    local wanted=${VANTREL_PYTHON_ROOT:-} header version problem
    [ -n "$wanted" ] || wanted=$(cached VANTREL_PYTHON_ROOT)
    [ -n "$wanted" ] || return 0
    [ -d "$wanted" ] || fail "VANTREL_PYTHON_ROOT: $wanted is not a folder; it must be the root of a Python $(offered_text)"
    python_root=$(cd -- "$wanted" && pwd)
    if [ "$python_root" = /usr ]; then
        python_root=
        return 0
    fi
    problem="there are no Python headers below $python_root/include"
    for header in "$python_root"/include/python3.*/Python.h; do
        [ -f "$header" ] || continue
        [[ $header =~ /python(3\.[0-9]+)[^/]*/Python\.h$ ]] || continue
        version=${BASH_REMATCH[1]}
        if ! is_offered "$version"; then
            problem="Python $version below $python_root cannot be used"
        elif ! compgen -G "$python_root/lib/libpython$version.so*" >/dev/null &&
            ! compgen -G "$python_root/lib/*/libpython$version.so*" >/dev/null; then
            problem="Python $version below $python_root has no shared library (it must be built with --enable-shared)"
        else
            return 0
        fi
    done
    fail "VANTREL_PYTHON_ROOT: $problem; choose the root of a Python $(offered_text)"
}

# ---- packages ----

# A system that lacks the package manager cannot be prepared; everything else depends on the packages that it offers.
check_system() {
    command -v dpkg-query >/dev/null ||
        fail "this is not a Debian system; install g++, CMake, Ninja, Qt $oldest_qt, QCustomPlot and QScintilla for Qt 6, OpenCV, zlib and Python $(offered_text) yourself and build with CMake"
}

# missing_packages NAME...: prints those that are not installed.
missing_packages() {
    local installed
    installed=$(dpkg-query -W -f='${db:Status-Status} ${Package}\n' "$@" 2>/dev/null) || true
    comm -23 <(printf '%s\n' "$@" | sort -u) <(sed -n 's/^installed //p' <<<"$installed" | sort -u)
}

require_packages() {
    local missing
    mapfile -t missing < <(missing_packages "$@")
    if [ ${#missing[@]} -gt 0 ]; then
        install_packages "${missing[@]}"
    fi
    require_offered "$(package_version qt6-base-dev)"
}

package_version() { dpkg-query -W -f='${Version}' "$1" 2>/dev/null || true; }

install_packages() {
    local plan
    packages_log=$build/packages.log
    lists_log=$build/lists.log
    command -v apt-get >/dev/null || fail "these packages cannot be installed because apt-get is missing: $*"
    say "missing packages: $*"
    if ! plan=$(plan_installation "$@"); then
        become_root "$@"
        if needs_repair; then
            repair_packages
        else
            # The package lists are missing or too old.
            update_lists
        fi
        plan=$(plan_installation "$@") || explain_no_plan "$@"
    fi
    require_offered "$(candidate qt6-base-dev)" "$(candidate python3-dev)"
    say "$(describe_plan "$plan")"
    if ! try_download "$plan"; then
        # The lists name versions that the mirror has replaced.
        become_root "$@"
        update_lists
    fi
    become_root "$@"
    if ! apt_get "$packages_log" install "$@"; then
        if needs_repair; then
            repair_packages
            apt_get "$packages_log" install "$@" || explain_apt_failure "$packages_log" "$@"
        elif is_download_problem && ! is_network_problem "$packages_log"; then
            update_lists
            apt_get "$packages_log" install "$@" || explain_apt_failure "$packages_log" "$@"
        else
            explain_apt_failure "$packages_log" "$@"
        fi
    fi
}

needs_repair() { grep -q 'dpkg --configure -a\|--fix-broken' "$packages_log"; }

# What apt-get would do. Needs no rights.
plan_installation() {
    LC_ALL=C apt-get install --print-uris --assume-yes --no-install-recommends "$@" 2>"$packages_log" </dev/null
}

# explain_no_plan PACKAGE...: the lists are as new as they can be, and still the packages cannot be installed.
explain_no_plan() {
    local unknown
    ! is_network_problem "$lists_log" || explain_apt_failure "$lists_log"
    unknown=$(sed -n "s/^E: Unable to locate package \(.*\)/\1/p; s/^E: Package '\(.*\)' has no .*/\1/p" "$packages_log" | sort -u | paste -sd ' ')
    [ -n "$unknown" ] || explain_apt_failure "$packages_log" "$@"
    fail "this system does not offer $unknown ($systems)"
}

# describe_plan PLAN: how many packages, how much to download, how much space.
describe_plan() {
    local count download space
    count=$(sed -n 's/^\([0-9]*\) upgraded, \([0-9]*\) newly installed.*/\1 + \2/p' <<<"$1")
    download=$(sed -n 's/^Need to get \([^/]*\)\(\/.*\)\? of archives.*/\1/p' <<<"$1")
    [ "$download" != '0 B' ] || download=
    space=$(sed -n 's/^After this operation, \(.*\) of additional disk space.*/\1/p' <<<"$1")
    printf 'installing %d packages (with what they depend on): %s to download, %s of disk space' "$((count))" "${download:-nothing}" "${space:-none}"
}

# try_download PLAN: downloads the smallest package of the plan, because apt-get takes minutes to find out that it can
# download none. Ends if the server cannot be reached, and returns 1 if it does not have the package.
try_download() {
    local smallest
    smallest=$(sed -n "s/^'[^']*' \([^_ ]*\)_[^ ]* \([0-9]*\) .*/\2 \1/p" <<<"$1" | sort -n | sed -n '1s/.* //p')
    [ -n "$smallest" ] || return 0
    mkdir -p "$build/download"
    run_job run_download "$smallest" || {
        ! is_network_problem "$packages_log" || explain_apt_failure "$packages_log"
        return 1
    }
    rm -rf "$build/download"
}

run_download() {
    cd "$build/download"
    LC_ALL=C apt-get -o Acquire::Retries=0 -o Acquire::http::Timeout=8 -o Acquire::https::Timeout=8 \
        download "$1" >"$packages_log" 2>&1
}

candidate() { LC_ALL=C apt-cache policy "$1" 2>/dev/null | sed -n 's/^  Candidate: //p' | grep -v '(none)' || true; }

# require_offered QT [PYTHON]: compares versions of packages with what the product needs.
require_offered() {
    local python
    [ -n "$1" ] || fail "this system does not offer Qt 6 ($systems)"
    dpkg --compare-versions "$1" ge "$oldest_qt" || fail "Qt $1 is too old; this system does not offer Qt $oldest_qt ($systems)"
    [ -n "${2:-}" ] && [ -z "$python_root" ] || return 0
    [[ $2 =~ ^(3\.[0-9]+) ]] && python=${BASH_REMATCH[1]} || return 0
    is_offered "$python" ||
        fail "this system has Python $python, which cannot be used; give the root of a Python $(offered_text) in the environment variable VANTREL_PYTHON_ROOT"
}

# ---- root's rights ----

root_command=()

# become_root PACKAGE...: finds out whether and how commands can run as root, before there is a progress line.
become_root() {
    [ "$EUID" != 0 ] && [ ${#root_command[@]} = 0 ] || return 0
    command -v sudo >/dev/null || fail "these packages are missing; install them as root: apt-get install $*"
    sudo env apt-get --version >/dev/null ||
        fail "sudo gave no root's rights (a wrong password, or a user who may not use sudo); install the packages as root: apt-get install $*"
    root_command=(sudo)
}

# ---- apt-get ----

update_lists() {
    say "fetching the package lists"
    apt_get "$lists_log" update || explain_apt_failure "$lists_log"
}

# apt_get LOG COMMAND [ARGUMENT...]: gives up a mirror that does not answer after some seconds; waits for another
# apt-get that is at work.
apt_get() {
    local log=$1 command=$2 status=0
    shift 2
    ! is_dpkg_locked || say "another package manager is at work; waiting for it to finish"
    begin_progress
    run_package_job follow_apt "$log" as_root apt-get -o APT::Status-Fd=1 -o DPkg::Lock::Timeout=600 \
        -o Acquire::Retries=1 -o Acquire::http::Timeout=8 -o Acquire::https::Timeout=8 \
        "$command" --assume-yes --no-install-recommends "$@" || status=$?
    clear_progress
    return "$status"
}

is_dpkg_locked() {
    local inode
    inode=$(stat -c %i /var/lib/dpkg/lock-frontend 2>/dev/null) || return 1
    grep -q ":$inode " /proc/locks 2>/dev/null
}

as_root() {
    exec env --default-signal=INT,QUIT "${root_command[@]}" env DEBIAN_FRONTEND=noninteractive LC_ALL=C "$@"
}

# Keeps apt-get's output and shows how far it is.
follow_apt() {
    local log=$1 line status percent phase='' name
    while IFS= read -r line || [ -n "$line" ]; do
        case $line in
        *dlstatus:*)
            IFS=: read -r _ percent status <<<"${line#*dlstatus:}"
            [ "$phase" = download ] || progress_next=0
            phase=download
            progress "${percent%%.*}" "downloading ${percent%%.*} %${status:+, ${status,}}"
            ;;
        *pmstatus:*)
            IFS=: read -r name percent status <<<"${line#*pmstatus:}"
            [ "$phase" = install ] || progress_next=0
            phase=install
            [ "$name" != dpkg-exec ] || name="running dpkg"
            progress "${percent%%.*}" "installing ${percent%%.*} %, $name"
            ;;
        *) printf '%s\n' "$line" ;;
        esac
    done >"$log"
}

repair_packages() {
    say "an earlier installation of packages was interrupted; finishing it first"
    run_package_job follow_apt "$packages_log" as_root dpkg --configure -a --force-confdef --force-confold || explain_apt_failure "$packages_log"
    apt_get "$packages_log" install --fix-broken || explain_apt_failure "$packages_log"
}

is_download_problem() { grep -q 'Failed to fetch\|Unable to fetch' "$packages_log"; }

# is_network_problem LOG
is_network_problem() {
    grep -q '^[EW]: .*\(resolving\|resolve\|Could not connect\|Cannot initiate the connection\|Unable to connect\|timed out\|Network is unreachable\|No route to host\)' "$1" 2>/dev/null
}

# explain_apt_failure LOG [PACKAGE...]
explain_apt_failure() {
    local log=$1
    shift
    if is_network_problem "$log"; then
        fail "the package server cannot be reached; connect this machine to the network, then run the same command again (details: $log)"
    elif is_disk_full "$log" /var/cache/apt /usr; then
        fail "there is not enough disk space for the packages; make room, then run the same command again (details: $log)"
    fi
    grep '^E: \|^dpkg: error' "$log" | tail -n 5 >&2 || tail -n 5 "$log" >&2
    fail "apt-get could not install the packages; the lines above say why, and $log has its full output${*:+. Try as root: apt-get install $*}"
}
