# Long steps run as jobs in the background, because the shell handles an interrupt at once only while it waits.

job=        # process id of the running job
job_group=  # the job leads a process group
job_signal= # what stops the job
job_follower= # process id of what reads the output of the job

trap 'interrupted 130' INT
trap 'interrupted 143' TERM
trap 'interrupted 129' HUP

interrupted() {
    trap '' INT TERM HUP
    stop_job
    clear_progress
    exit "$1"
}

# Compilers end within milliseconds; what does not end within a second is killed. apt-get is not: where it does not stop
# by itself, it goes on in the background, because an installation that is cut off must be repaired.
stop_job() {
    local target=$job attempt
    [ -z "$job_follower" ] || kill "$job_follower" 2>/dev/null || true
    [ -n "$job" ] || return 0
    [ -z "$job_group" ] || target=-$job
    kill -"$job_signal" -- "$target" 2>/dev/null || true
    if [ "$job_signal" = INT ]; then
        sleep 0.2
        [ ! -d "/proc/$job" ] || say "apt-get finishes in the background what it has begun; the next call waits for it"
        return 0
    fi
    for attempt in 1 2 3 4 5 6 7 8 9 10; do
        kill -0 -- "$target" 2>/dev/null || return 0
        sleep 0.1
    done
    kill -KILL -- "$target" 2>/dev/null || true
}

# run_job COMMAND...: runs a command or function in a process group of its own and returns its status.
run_job() {
    local status=0
    job_group=yes job_signal=TERM
    set -m
    "$@" </dev/null &
    job=$!
    set +m
    wait "$job" || status=$?
    job=
    return "$status"
}

# run_package_job FOLLOWER LOG COMMAND...: runs a command that needs root's rights; the function FOLLOWER reads its output
# and writes LOG. With sudo, which may ask for a password, the command stays in the process group of the terminal. There
# it must reset the interrupt signal itself, because a background job of a shell ignores it.
run_package_job() {
    local follower=$1 log=$2 pipe=$build/output.pipe status=0
    shift 2
    rm -f "$pipe"
    mkfifo "$pipe"
    "$follower" "$log" <"$pipe" 9>&- &
    job_follower=$!
    job_group='' job_signal=INT
    if [ "$EUID" = 0 ]; then
        job_group=yes
        set -m
    fi
    "$@" </dev/null >"$pipe" 2>&1 9>&- &
    job=$!
    set +m
    wait "$job" || status=$?
    job=
    wait "$job_follower" || true
    job_follower=
    rm -f "$pipe"
    return "$status"
}
