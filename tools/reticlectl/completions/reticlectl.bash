# Completions of reticlectl for bash: source this file from ~/.bashrc, or install it as
# /usr/share/bash-completion/completions/reticlectl.

# Prints the options that may follow the command.
_reticlectl_options() {
    echo --help --version --host --port --timeout --color --json
    case $1 in
        list) echo --watch --names ;;
        show) echo --output --template ;;
        gallery) echo --output --background ;;
        ping) echo --count --interval ;;
        trace) echo --listen --pass-all ;;
    esac
}

# Succeeds for an option that the next word belongs to.
_reticlectl_takes_value() {
    case $1 in
        --host | --port | --timeout | --color | --watch | --output | --background | --count | --interval | --listen) return 0 ;;
        *) return 1 ;;
    esac
}

# Finds the command and how many of its arguments stand before the current word.
_reticlectl_read_words() {
    local i
    command='' arguments=0
    for ((i = 1; i < COMP_CWORD; i++)); do
        case ${COMP_WORDS[i]} in
            =) ((i++)) ;;
            --*)
                if _reticlectl_takes_value "${COMP_WORDS[i]}" && [ "${COMP_WORDS[i + 1]}" != = ]; then
                    ((i++))
                fi
                ;;
            *)
                if [ -z "$command" ]; then
                    command=${COMP_WORDS[i]}
                else
                    ((arguments++))
                fi
                ;;
        esac
    done
}

_reticlectl_complete_files() {
    compopt -o filenames 2>/dev/null
    mapfile -t COMPREPLY < <(compgen -f -- "$1")
}

# Prints a reticle's index and name on each line, as the device of this command line lists them; nothing, and soon, where
# it does not answer.
_reticlectl_reticles() {
    local i options=()
    for ((i = 1; i < COMP_CWORD; i++)); do
        case ${COMP_WORDS[i]} in
            --host | --port)
                if [ "${COMP_WORDS[i + 1]}" = = ]; then
                    options+=("${COMP_WORDS[i]}" "${COMP_WORDS[i + 2]}")
                else
                    options+=("${COMP_WORDS[i]}" "${COMP_WORDS[i + 1]}")
                fi
                ;;
        esac
    done
    reticlectl --timeout 1 "${options[@]}" list --names 2>/dev/null </dev/null
}

# The names show where several indices are listed; an index by itself is put in without.
_reticlectl_complete_index() {
    local index name lines=()
    compopt -o nosort 2>/dev/null
    while IFS=$'\t' read -r index name; do
        [[ $index != "$1"* ]] || lines+=("$index  ($name)")
    done < <(_reticlectl_reticles)
    COMPREPLY=("${lines[@]}")
    # What menus of bash put in goes without as well.
    if [ ${#lines[@]} -eq 1 ] || [ "${COMP_TYPE:-9}" -eq 37 ]; then
        COMPREPLY=("${lines[@]%%  (*}")
    fi
}

_reticlectl_complete_value() {
    case $1 in
        --color) mapfile -t COMPREPLY < <(compgen -W "auto always never" -- "$2") ;;
        --host) mapfile -t COMPREPLY < <(compgen -A hostname -- "$2") ;;
        --background) mapfile -t COMPREPLY < <(compgen -W "auto light dark grey" -- "$2") ;;
        --output) _reticlectl_complete_files "$2" ;;
    esac
}

_reticlectl() {
    local current=${COMP_WORDS[COMP_CWORD]} previous=${COMP_WORDS[COMP_CWORD - 1]}
    local command arguments
    COMPREPLY=()
    # bash makes three words of --color=never.
    if [ "$current" = = ]; then
        current=''
    elif [ "$previous" = = ]; then
        previous=${COMP_WORDS[COMP_CWORD - 2]}
    fi
    if _reticlectl_takes_value "$previous"; then
        _reticlectl_complete_value "$previous" "$current"
        return
    fi
    _reticlectl_read_words
    case $current,$command,$arguments in
        -*) mapfile -t COMPREPLY < <(compgen -W "$(_reticlectl_options "$command")" -- "$current") ;;
        *,,* | *,help,0)
            mapfile -t COMPREPLY < <(
                compgen -W "list activate add update delete show gallery ping doctor trace help" -- "$current"
            )
            ;;
        *,activate,0 | *,show,0 | *,update,0 | *,delete,*) _reticlectl_complete_index "$current" ;;
        *,add,*[13579] | *,update,2) _reticlectl_complete_files "$current" ;;
    esac
}

complete -F _reticlectl reticlectl
