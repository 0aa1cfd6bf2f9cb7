# The commands of ./vantrel.

usage() {
    cat <<'TEXT'
Usage: ./vantrel COMMAND [...]

  run [options] SCRIPT...   run scripts one after another in one process ("./vantrel run --help" lists the options)
  view [FILE...]            open the viewer
  test [FILTER]             run all tests, or those whose names match FILTER, on every offered Python
  bench [FILTER]            run all benchmarks, or the tasks whose names contain FILTER; with "--json FILE", write the
                            figures to a file, too
  fuzz SECONDS              feed random data to the image functions for that long, with the sanitizers
  soak [COUNT]              stop scripts of each kind at random moments, COUNT times (200)
  pictures                  make the pictures of the documentation again
  package                   make the Debian packages
  build                     build everything, tests included
  help                      show this text

For example, run a script and look at what it opens:

  ./vantrel run --show examples/first_light.py

Each command first builds what it needs. Missing packages of the distribution are installed, after a line that says
which and how much there is to download.

Environment variables:
  VANTREL_PRESET        the build: release (the default), debug, asan or tsan
  VANTREL_PYTHON_ROOT   the root of the Python to embed, at first /usr; a build folder keeps its Python until another
                        is given
TEXT
}

run_command() {
    local command=${1:-help}
    [ $# = 0 ] || shift
    case $command in
    run | view)
        check_program_call "$command" "$@"
        make_product
        exec "$build/bin/vantrel" "$command" "$@"
        ;;
    test)
        [ $# -le 1 ] || fail "test accepts at most one filter"
        run_tests "$@"
        ;;
    bench)
        check_bench_call "$@"
        make_everything "${bench_packages[@]}"
        exec "$root/bench/run" "$build" "$@"
        ;;
    fuzz) run_fuzzer "$@" ;;
    soak) run_soak "$@" ;;
    pictures)
        check_no_arguments pictures "$@"
        make_product "${picture_packages[@]}"
        exec "$root/tools/make_pictures" "$build/bin/vantrel"
        ;;
    package)
        check_no_arguments package "$@"
        make_product dpkg-dev file
        exec "$root/packaging/make_packages" "$build"
        ;;
    build)
        check_no_arguments build "$@"
        make_everything
        ;;
    help | --help | -h)
        check_no_arguments "$command" "$@"
        usage
        ;;
    --version)
        check_no_arguments "$command" "$@"
        printf 'vantrel %s\n' "$(program_version)"
        ;;
    *)
        fail "unknown command \"$command\"; did you mean \"./vantrel $(nearest_command "$command")\"?"
        ;;
    esac
}

run_tests() {
    local log=$build/test.log status=0 failed=0 total=0 skipped=0 pythons='' further=''
    make_everything
    { read -r pythons && read -r further; } <"$build/pythons.txt" || true
    say "testing on Python ${pythons//;/ and }${further:+, in part on ${further//;/, }}"
    grep -q '3\.8' "$build/pythons.txt" ||
        say "this machine has no Python 3.8 with a shared library: no test runs on 3.8"
    if [ -z "${XDG_RUNTIME_DIR:-}" ]; then # without it Qt would write a warning in every test
        export XDG_RUNTIME_DIR=$build/runtime
        mkdir -p -m 700 "$XDG_RUNTIME_DIR"
    fi
    run_job run_ctest "$log" "$@" || status=$?
    read -r failed total < <(sed -n 's/.* \([0-9]*\) tests failed out of \([0-9]*\)$/\1 \2/p' "$log") || true
    skipped=$(grep -c '\*\*\*Skipped' "$log" || true)
    [ "${total:-0}" -gt 0 ] || fail "no test matches \"${1:-}\""
    [ "$skipped" = 0 ] || printf '%s skipped\n' "$skipped"
    printf '%s passed, %s failed\n' "$((total - failed - skipped))" "$failed"
    [ "$status" = 0 ] && [ "$failed" = 0 ]
}

run_ctest() { ctest --test-dir "$build" -j "$(nproc)" --output-on-failure ${2:+-R "$2"} 2>&1 | tee "$1"; }

run_soak() {
    case ${1:-200} in
    *[!0-9]*) fail "soak needs a number of stops, not \"$1\"" ;;
    esac
    [ $# -le 1 ] || fail "soak accepts only a number of stops, but was also given \"$2\""
    make_everything
    exec "$root/tools/soak" "${1:-200}" "$build"
}

run_fuzzer() {
    local version
    case ${1:-} in
    '' | *[!0-9]*) fail "fuzz needs a number of seconds" ;;
    esac
    [ $# = 1 ] || fail "fuzz accepts only a number of seconds, but was also given \"$2\""
    preset=asan
    build=$root/build-asan
    stamp=$build/up-to-date
    make_everything
    version=$(sed '1!d; s/;.*//' "$build/pythons.txt")
    VANTREL_FUZZ_SEED=${VANTREL_FUZZ_SEED:-0} VANTREL_FUZZ_SECONDS=$1 exec "$build/tests/script_image_fuzz_test" \
        --plugin="$build/plugins/libvantrel_python.so" --python-version="$version" \
        --python-home="$(cached VANTREL_PYTHON_ROOT)"
}

# The command that a mistyped one most likely means: the one with the longest common beginning.
nearest_command() {
    local word=$1 command length best=help most=0
    for command in run view test bench fuzz soak pictures package build help; do
        length=${#command}
        while [ "$length" -gt 0 ] && [ "${word:0:length}" != "${command:0:length}" ]; do
            length=$((length - 1))
        done
        if [ "$length" -gt "$most" ]; then
            most=$length
            best=$command
        fi
    done
    printf '%s' "$best"
}
