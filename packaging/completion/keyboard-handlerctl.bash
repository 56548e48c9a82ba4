# SPDX-License-Identifier: MIT
# shellcheck shell=bash
# Completion of keyboard-handlerctl for bash. The program's help has the verbs and options.

_keyboard_handlerctl()
{
    local current=${COMP_WORDS[COMP_CWORD]} previous=${COMP_WORDS[COMP_CWORD - 1]} verb=${COMP_WORDS[1]} words=
    if [ "$COMP_CWORD" -eq 1 ]; then
        words=$(keyboard-handlerctl --help | sed -n 's/^  \([a-z-]*\) .*/\1/p')
    else
        case $previous in
        --output)
            mapfile -t COMPREPLY < <(compgen -f -- "$current")
            return
            ;;
        --action) words="Pressed Released Repeated" ;;
        --prefix | --timeout | --sender | --receiver | --for) return ;;
        *)
            case $verb:$current in
            *:-*) words=$(keyboard-handlerctl "$verb" --help | grep -oE -- '^  [^ ].*--[a-z]+' | grep -oE -- '--[a-z]+') ;;
            test:*) words="start result" ;;
            simulate:* | combine:* | shortcut:*)
                words="On Off Feed Help Menu Back Right Up Down Ok Chs One Ten Function FactoryReset"
                ;;
            esac
            ;;
        esac
    fi
    mapfile -t COMPREPLY < <(compgen -W "$words" -- "$current")
}
complete -o filenames -F _keyboard_handlerctl keyboard-handlerctl
