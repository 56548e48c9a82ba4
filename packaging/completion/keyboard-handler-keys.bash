# SPDX-License-Identifier: MIT
# shellcheck shell=bash
# Completion of keyboard-handler-keys for bash.

_keyboard_handler_keys()
{
    local current=${COMP_WORDS[COMP_CWORD]} previous=${COMP_WORDS[COMP_CWORD - 1]} command=${COMP_WORDS[1]} words=
    if [ "$COMP_CWORD" -eq 1 ]; then
        words="check card explain how what why diff schema"
    else
        case $previous in
        --model) words="Pellit Orvane" ;;
        --hands) words="1 2 3 4" ;;
        --format)
            words="text lines json sarif"
            case $command in card | diff) words="text json html" ;; esac
            ;;
        --deny) words=warning ;;
        --for) words="users services" ;;
        --state) words="Startup Idle Print PrintOff Update Error" ;;
        --witness)
            mapfile -t COMPREPLY < <(compgen -d -- "$current")
            return
            ;;
        --pace | --allow | --at) return ;;
        *)
            case $command:$current in
            check:-*) words="--model --hands --pace --format --allow --deny --witness --fix --help" ;;
            card:-*) words="--format --state --model --help" ;;
            how:-*) words="--rows --state --model --help" ;;
            what:-*) words="--state --model --help" ;;
            diff:-*) words="--for --model --format --help" ;;
            why:-*) words="--at --state --model --help" ;;
            explain:* | schema:*) return ;;
            *)
                mapfile -t COMPREPLY < <(compgen -f -- "$current")
                return
                ;;
            esac
            ;;
        esac
    fi
    mapfile -t COMPREPLY < <(compgen -W "$words" -- "$current")
}
complete -o filenames -F _keyboard_handler_keys keyboard-handler-keys
