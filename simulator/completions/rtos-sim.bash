# Completions of rtos-sim for bash: source this file from ~/.bashrc, or install it as
# /usr/share/bash-completion/completions/rtos-sim.

_rtos_sim_words() {
    mapfile -t COMPREPLY < <(compgen -W "$1" -- "$2")
}

_rtos_sim_paths() {
    compopt -o filenames 2>/dev/null
    mapfile -t COMPREPLY < <(compgen "$1" -- "$2")
}

# The kinds of faults; an argument follows a colon.
_rtos_sim_faults() {
    _rtos_sim_words "refuse: no-param bad-list empty-list missing-file long garbage split: delay: silent close reset" "$1"
    [[ ${COMPREPLY[*]} != *: ]] || compopt -o nospace 2>/dev/null
}

# The words of a command, which stand behind `ctl PATH`: $1 is the current one, the others are those before it.
_rtos_sim_command() {
    local current=$1 command=$2
    case $command,$# in
        ,1) _rtos_sim_words "status fault faults activate color rename add delete deletable restart reset events" "$current" ;;
        fault,2) _rtos_sim_faults "$current" ;;
        fault,*) _rtos_sim_words "next every" "$current" ;;
        faults,2) _rtos_sim_words "off" "$current" ;;
        add,3) _rtos_sim_paths -f "$current" ;;
        deletable,3) _rtos_sim_words "yes no" "$current" ;;
        restart,2) _rtos_sim_words "--down" "$current" ;;
    esac
}

_rtos_sim() {
    local current=${COMP_WORDS[COMP_CWORD]} previous=${COMP_WORDS[COMP_CWORD - 1]}
    COMPREPLY=()
    if [ "${COMP_WORDS[1]}" = ctl ] && [ "$COMP_CWORD" -gt 1 ]; then
        if [ "$COMP_CWORD" -gt 2 ]; then
            _rtos_sim_command "$current" "${COMP_WORDS[@]:3:COMP_CWORD - 3}"
        elif [[ $current = -* ]]; then
            _rtos_sim_words "--help" "$current"
        else
            _rtos_sim_paths -f "$current"
        fi
        return
    fi
    # bash makes three words of --fault=silent.
    if [ "$current" = = ]; then
        current=''
    elif [ "$previous" = = ]; then
        previous=${COMP_WORDS[COMP_CWORD - 2]}
    fi
    case $previous in
        --fault) _rtos_sim_faults "$current" ;;
        --root) _rtos_sim_paths -d "$current" ;;
        --control | --record | --replay | --from-log) _rtos_sim_paths -f "$current" ;;
        --port | --max-reticles | --max-bytes | --web) ;;
        *)
            local words="--help --version --root --port --max-reticles --max-bytes --reset --verbose --fault --control \
                --web --record --replay --from-log"
            [ "$COMP_CWORD" -gt 1 ] || words+=' ctl'
            _rtos_sim_words "$words" "$current"
            ;;
    esac
}

complete -F _rtos_sim rtos-sim
