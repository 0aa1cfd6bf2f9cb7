# What can be said about a call before anything is installed or built. The program checks its arguments itself, but it
# need not exist yet. Its source holds the texts and, in them, the options.

# program_text NAME: the text of that name in the source of the program.
program_text() {
    sed -n "/^const char\* const $1 = R\"(/,/)\";\$/{s/^const char\* const $1 = R\"(//; s/)\";\$//; p}" "$root"/viewer/*.cpp |
        sed '${/^$/d}'
}

program_version() { sed -n 's/^project(.* VERSION \([0-9.]*\).*/\1/p' "$root/CMakeLists.txt"; }

check_preset() {
    local names
    names=$(sed -n '/"buildPresets"/q; s/.*"name": *"\([^"]*\)".*/\1/p' "$root/CMakePresets.json")
    grep -qxF -- "$preset" <<<"$names" ||
        fail "VANTREL_PRESET: there is no preset \"$preset\"; choose one of: $(paste -sd ' ' <<<"$names")"
}

# check_no_arguments COMMAND [ARGUMENT...]
check_no_arguments() {
    [ $# -le 1 ] || fail "$1 accepts no arguments, but was given \"$2\""
}

# check_bench_call [FILTER] [--json FILE]
check_bench_call() {
    local file filter=''
    while [ $# -gt 0 ]; do
        case $1 in
        --json=?*) file=${1#*=} ;;
        --json)
            [ $# -gt 1 ] || fail "--json needs the name of a file"
            file=$2
            shift
            ;;
        -*) fail "unknown option \"$1\" of bench" ;;
        *)
            [ -z "$filter" ] || fail "bench accepts at most one filter"
            filter=$1
            ;;
        esac
        shift
    done
    if [ -n "${file:-}" ]; then
        [ -d "$(dirname -- "$file")" ] || fail "--json: the folder of $file does not exist"
    fi
}

# check_program_call COMMAND [ARGUMENT...]: ends with status 2 if the program would refuse the call, and prints the help
# if the call asks for it.
check_program_call() {
    local command=$1 argument name value usage help='' windows=''
    call_files=()
    usage=$(program_text "${command}Usage")
    [ "$command" != view ] || windows=yes
    shift
    while [ $# -gt 0 ]; do
        argument=$1
        shift
        case $argument in
        --)
            # After the scripts of run, everything belongs to them.
            [ "$command" = run ] || call_files+=("$@")
            break
            ;;
        -h | --help) help=yes ;;
        --?*)
            name=${argument#--}
            name=${name%%=*}
            if [[ $usage =~ $'\n'"  --$name "[A-Z] ]]; then
                if [[ $argument = *=* ]]; then
                    value=${argument#*=}
                elif [ $# -gt 0 ]; then
                    value=$1
                    shift
                else
                    fail "Missing value after '--$name'."
                fi
                check_option "$command" "$name" "$value"
            elif [[ $usage =~ $'\n'"  --$name "  && $argument != *=* ]]; then
                [ "$name" != show ] || windows=yes
            else
                fail "Unknown option '$name'; \"./vantrel $command --help\" lists the options."
            fi
            ;;
        -?*) fail "Unknown option '${argument#-}'; \"./vantrel $command --help\" lists the options." ;;
        *) call_files+=("$argument") ;;
        esac
    done
    if [ -n "$help" ]; then
        printf '%s\n' "$usage"
        exit 0
    fi
    [ "$command" != run ] || check_scripts "${call_files[@]}"
    [ -z "$windows" ] || check_display
}

check_scripts() {
    local script
    [ $# -gt 0 ] || fail "No script given; try: ./vantrel run examples/first_light.py"
    for script in "$@"; do
        check_file "Cannot read the script $script" "$script"
    done
}

# check_option COMMAND NAME VALUE
check_option() {
    case $2 in
    sim-cameras) [[ $3 =~ ^[0-4]$ ]] || fail "--$2 needs a number from 0 to 4, not '$3'." ;;
    workdir | python-home | venv)
        [ -n "$3" ] || fail "--$2 needs a value."
        [ -d "$3" ] || fail "$3 is not a folder."
        ;;
    log)
        [ -n "$3" ] || fail "--$2 needs a value."
        [[ $3 != */* ]] || [ -d "${3%/*}/" ] || fail "Cannot write the log file $3: its folder does not exist."
        ;;
    open) check_file "Cannot open $3 as an image" "$3" ;;
    image)
        [[ $3 =~ ^[^0-9=][^=]*=. ]] || fail "--image needs NAME=FILE with a valid variable name, not '$3'."
        check_file "Cannot open ${3#*=} as an image" "${3#*=}"
        ;;
    esac
}

# check_file PROBLEM FILE
check_file() {
    [ -e "$2" ] || fail "$1: there is no such file."
    [ ! -d "$2" ] || fail "$1: it is a folder."
    [ -r "$2" ] || fail "$1: it may not be read."
}

# The program looks for the display as well, and tries whether it answers.
check_display() {
    [ -n "${QT_QPA_PLATFORM:-}${WAYLAND_DISPLAY:-}${DISPLAY:-}" ] || fail "$(program_text noDisplayText)"
}
