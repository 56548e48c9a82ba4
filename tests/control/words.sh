#!/bin/sh
# SPDX-License-Identifier: MIT
# Checks that the manual page and the completions know the verbs and options of keyboard-handlerctl, and no others.
# Usage: words.sh PROGRAM SOURCE_FOLDER
set -eu
program=$1 source=$2
page=$source/packaging/man/keyboard-handlerctl.1.in
completion=$source/packaging/completion/keyboard-handlerctl.bash
faults=0

# same WHAT EXPECTED ACTUAL: compares two lists of words.
same() {
    if [ "$2" != "$3" ]; then
        echo "$1: expected $(echo "$2" | tr '\n' ' ')but found $(echo "$3" | tr '\n' ' ')"
        faults=1
    fi
}

verbs=$("$program" --help | sed -n 's/^  \([a-z-]*\) .*/\1/p' | sort)
[ "$(echo "$verbs" | wc -l)" -gt 7 ] || { echo "no verbs were found" && exit 1; }
options=$(for verb in $verbs; do "$program" "$verb" --help; done | sed -n 's/^  \(-h, \)\?\(--[a-z]*\).*/\2/p' | sort -u)
[ "$(echo "$options" | wc -l)" -gt 5 ] || { echo "no options were found" && exit 1; }

for verb in $verbs; do
    help=$("$program" "$verb" --help)
    case $help in
    "Usage: keyboard-handlerctl $verb"*"Examples:"*) ;;
    *) echo "the help of $verb has no usage or no example" && faults=1 ;;
    esac
done

same "verbs of the manual page" "$verbs" \
    "$(sed -n '/^\.Sh DESCRIPTION/,/^\.Ss Options/s/^\.It Cm //p' "$page" | sed 's/ , /\n/g; s/ [a-z]*$//' | sort -u)"
same "options of the manual page" "$options" "$(grep -oE 'Fl -[a-z]+' "$page" | sed 's/Fl /-/' | sort -u)"

# completions_of WORD...: the completions of the last word in bash.
completions_of() {
    # shellcheck disable=SC2016
    PATH=$(dirname "$program"):$PATH bash -c '. "$1"; shift; COMP_WORDS=(keyboard-handlerctl "$@") COMP_CWORD=$#
        _keyboard_handlerctl
        printf "%s\n" "${COMPREPLY[@]}" | sort' - "$completion" "$@"
}
same "bash: verbs" "$verbs" "$(completions_of '')"
same "bash: options" "--receiver" "$(completions_of monitor --rec)"
same "bash: keys" "Menu" "$(completions_of simulate Men)"
same "bash: values" "Released" "$(completions_of simulate Menu --action Rel)"
exit $faults
