# SPDX-License-Identifier: MIT
# Completion of keyboard-handlerctl for fish. The program's help has the verbs and options.

complete -c keyboard-handlerctl -f
complete -c keyboard-handlerctl -n __fish_is_first_token \
    -a "(keyboard-handlerctl --help | string match -r '^  [a-z-]+ .*' | string trim | string replace -r '^([a-z-]+)( [A-Za-z|.]+)? +' '\$1\t')"
complete -c keyboard-handlerctl -n 'not __fish_is_first_token' \
    -a "(keyboard-handlerctl (commandline -opc)[2] --help | string match -r -- '^  [^ ].*--[a-z]+' | string match -r -- '--[a-z]+')"
complete -c keyboard-handlerctl -n '__fish_seen_subcommand_from test' -a 'start result'
complete -c keyboard-handlerctl -n '__fish_seen_subcommand_from simulate combine shortcut' \
    -a 'On Off Feed Help Menu Back Right Up Down Ok Chs One Ten Function FactoryReset'
complete -c keyboard-handlerctl -n '__fish_seen_subcommand_from record' -l output -r -F
