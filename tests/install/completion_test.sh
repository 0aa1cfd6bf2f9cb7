#!/usr/bin/env bash
# usage: completion_test.sh COMPLETION_FILE PROGRAM_FOLDER
#
# Completes command lines as an interactive bash does, with the program's real help text.
set -euo pipefail
PATH=$2:$PATH
. "$1"

work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
cd "$work"
mkdir pictures 'my scripts'
touch scene.tif script.py 'my scripts/a.py' notes.txt
status=0

# completes EXPECTED WORD...: completes the last of the words, which stand after "vantrel"; EXPECTED is one line.
completes() {
    local expected=$1
    shift
    COMP_WORDS=(vantrel "$@")
    COMP_CWORD=$#
    COMPREPLY=()
    _vantrel vantrel "${!#}" "${COMP_WORDS[COMP_CWORD - 1]}" || true # compopt works in an interactive bash only
    local actual
    actual=$(printf '%s\n' "${COMPREPLY[@]}" | LC_ALL=C sort | paste -sd '|')
    [ "$actual" = "$expected" ] || {
        printf 'vantrel %s\n  expected %s\n  actual   %s\n' "$*" "$expected" "$actual"
        status=1
    }
}

[ "$(complete -p vantrel)" = 'complete -F _vantrel vantrel' ] || { echo 'no completion for vantrel'; status=1; }

completes '--help|--version|run|view' ''
completes 'run' r
completes '--version' --v

everything='my scripts|notes.txt|pictures|scene.tif|script.py'
options=$(vantrel run --help | grep -oE '^  --[a-z][a-z-]*' | tr -d ' ')
[ "$(wc -l <<<"$options")" -ge 9 ] || { echo 'the help text has too few options'; status=1; }
completes "$(printf '%s\n--help\n' "$options" | LC_ALL=C sort | paste -sd '|')" run --
completes '--log' run --lo
completes '--help' view --

completes 'my scripts|pictures|script.py' run ''
completes 'my scripts/a.py' run 'my scripts/'
completes 'notes.txt' run no # any file can be a script
completes 'script.py' run --show scr
completes 'scene.tif|script.py' view sc

completes "$everything" run --log ''
completes 'scene.tif' run --open sce
completes 'my scripts|pictures' run --workdir ''
completes '' run --answer ''
completes '' run --sim-cameras ''

# Bash passes --open=FILE and NAME=FILE as three words, the last of which may still be missing.
completes 'scene.tif' run --open = sce
completes "$everything" run --open =
completes '' run --image na
completes 'scene.tif' run --image name = sce
completes "$everything" run --image name =
completes 'script.py' run --log = out.txt scr

completes 'notes.txt' run script.py -- no
completes '' unknown ''
exit $status
