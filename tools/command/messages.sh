# What ./vantrel says, and the line that shows how far a long step is. Everything goes to standard error.

say() {
    clear_progress
    printf 'vantrel: %s\n' "$*" >&2
}

fail() {
    say "$*"
    exit 2
}

# ---- progress ----

progress_shown= # a progress line may stand on the terminal
progress_next=0 # without a terminal: the percentage at which the next line is due
progress_width=80

begin_progress() {
    progress_next=0
    shows_moving_line || return 0
    progress_shown=yes
    read -r _ progress_width < <(stty size <&2 2>/dev/null || echo 25 80) || true
    [ "$progress_width" -gt 0 ] || progress_width=80
}

shows_moving_line() { [ -t 2 ] && [ "${TERM:-dumb}" != dumb ]; }

# progress PERCENT TEXT: moves the line on a terminal; elsewhere writes a line for about every tenth of the way.
progress() {
    local text="vantrel: $2"
    if shows_moving_line; then
        printf '\r%s\033[K' "${text:0:$((progress_width - 1))}" >&2
        progress_shown=yes
    elif [ "$1" -ge "$progress_next" ]; then
        printf '%s\n' "$text" >&2
        progress_next=$(($1 / 10 * 10 + 10))
    fi
}

clear_progress() {
    [ -z "$progress_shown" ] || printf '\r\033[K' >&2
    progress_shown=
}
