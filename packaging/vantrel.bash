# Completion of vantrel in bash. The options come from the help text of the program; the word for an option's value in
# that text says whether files or folders complete the value.

# Prints the options of a command, each followed by the word for its value if it has one.
_vantrel_options()
{
    vantrel "$1" --help 2>/dev/null | sed -nE 's/^  (--[a-z-]+)( ([^ ]+))?(  .*)?$/\1 \3/p'
    printf '%s \n' --help
}

# _vantrel_paths KIND WORD [COMPGEN OPTION...]: completes WORD with files (KIND -f) or folders (KIND -d).
_vantrel_paths()
{
    local kind=$1 word=$2
    shift 2
    compopt -o filenames 2>/dev/null
    mapfile -t COMPREPLY < <(compgen "$kind" "$@" -- "$word")
}

_vantrel()
{
    local command=${COMP_WORDS[1]:-} line=() word i option='' value='' options
    COMPREPLY=()
    if [ "$COMP_CWORD" -le 1 ]; then
        mapfile -t COMPREPLY < <(compgen -W 'run view --help --version' -- "$command")
        return
    fi

    # Bash cuts words at "=". Put them together again.
    for ((i = 2; i <= COMP_CWORD; i++)); do
        if ((${#line[@]} > 0)) && { [ "${COMP_WORDS[i]}" = = ] || [ "${COMP_WORDS[i - 1]}" = = ]; }; then
            line[-1]+=${COMP_WORDS[i]}
        else
            line+=("${COMP_WORDS[i]}")
        fi
    done
    word=${line[-1]}
    unset 'line[-1]'

    # Everything after "--" belongs to the scripts.
    for i in "${line[@]}"; do
        [ "$i" != -- ] || { _vantrel_paths -f "$word"; return; }
    done

    options=$(_vantrel_options "$command")
    if [[ $word == --*=* ]]; then
        option=${word%%=*}
        word=${word#*=}
    elif ((${#line[@]} > 0)); then
        option=${line[-1]}
    fi
    [[ $option != --* ]] || value=$(sed -n "s/^$option //p" <<<"$options")

    case $value in
    FILE) _vantrel_paths -f "$word" ;;
    DIR) _vantrel_paths -d "$word" ;;
    *=FILE) [[ $word != *=* ]] || _vantrel_paths -f "${word#*=}" ;;
    ?*) ;;
    *)
        if [[ $word == -* ]]; then
            mapfile -t COMPREPLY < <(compgen -W "$(sed 's/ .*//' <<<"$options")" -- "$word")
        elif [ "$command" = run ]; then
            _vantrel_paths -f "$word" -X '!*.py'
            local scripts=("${COMPREPLY[@]}")
            _vantrel_paths -d "$word"
            COMPREPLY+=("${scripts[@]}")
            ((${#COMPREPLY[@]} > 0)) || _vantrel_paths -f "$word"
        elif [ "$command" = view ]; then
            _vantrel_paths -f "$word"
        fi
        ;;
    esac
}

complete -F _vantrel vantrel
