#!/bin/sh
# SPDX-License-Identifier: MIT
# Checks that the manual page and the completions name the commands of keyboard-handler-keys and their options, and no
# others. Usage: words.sh PROGRAM SOURCE_FOLDER
set -eu
program=$1 source=$2
completion=$source/packaging/completion
page=$source/packaging/man/keyboard-handler-keys.1.in
faults=0

# same WHAT EXPECTED ACTUAL: compares two lists of words.
same() {
    if [ "$2" != "$3" ]; then
        echo "$1: expected $(echo "$2" | tr '\n' ' ')but found $(echo "$3" | tr '\n' ' ')"
        faults=1
    fi
}

commands=$("$program" 2>&1 | sed -n 's/^The commands are: \(.*\)\.$/\1/p' | tr -d ' ' | tr ',' '\n' | sort)
[ "$(echo "$commands" | wc -l)" -gt 3 ] || { echo "no commands were found" && exit 1; }
options=$(for command in $commands; do "$program" "$command" --help || true; done | grep -oE -- '--[a-z]+' | sort -u)
[ "$(echo "$options" | wc -l)" -gt 8 ] || { echo "no options were found" && exit 1; }

for command in $commands; do
    usage=$("$program" "$command" --help | head -n 1)
    case $usage in
    "Usage: keyboard-handler-keys $command"*) ;;
    *) echo "the help of $command begins with: $usage" && faults=1 ;;
    esac
done

same "commands of the manual page" "$commands" "$(sed -n 's/^\.It Cm \([a-z]*\).*/\1/p' "$page" | sort)"
same "options of the manual page" "$options" "$(grep -oE 'Fl -[a-z]+' "$page" | sed 's/Fl /-/' | sort -u)"
same "commands of zsh" "$commands" "$(sed -n "s/^    '\([a-z]*\):.*/\1/p" "$completion/_keyboard-handler-keys" | sort)"
same "commands of fish" "$commands" \
    "$(sed -n 's/^set -l commands //p' "$completion/keyboard-handler-keys.fish" | tr ' ' '\n' | sort)"
same "options of fish" "$options" \
    "$(grep '^complete' "$completion/keyboard-handler-keys.fish" | grep -oE -- '-l [a-z]+' | sed 's/-l /--/' | sort -u)"
for shell in keyboard-handler-keys.bash _keyboard-handler-keys; do
    same "options of $shell" "$options" "$(grep -oE -- '--[a-z]+' "$completion/$shell" | sort -u)"
done

# completions_of WORD...: the completions of the last word in bash.
completions_of() {
    # shellcheck disable=SC2016
    bash -c '. "$1"; shift; COMP_WORDS=(keyboard-handler-keys "$@") COMP_CWORD=$#
        _keyboard_handler_keys
        printf "%s\n" "${COMPREPLY[@]}" | sort' - "$completion/keyboard-handler-keys.bash" "$@"
}
same "bash: commands" "$commands" "$(completions_of '')"
same "bash: options" "--format" "$(completions_of check --fo)"
same "bash: values" "json" "$(completions_of check --format j)"
same "bash: files" "$source/data/" "$(completions_of check "$source/dat")/"
exit $faults
