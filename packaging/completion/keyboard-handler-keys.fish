# SPDX-License-Identifier: MIT
# Completion of keyboard-handler-keys for fish.

set -l commands check card explain how what why diff schema
set -l plays card how what why diff
complete -c keyboard-handler-keys -f
complete -c keyboard-handler-keys -n "not __fish_seen_subcommand_from $commands" -a check -d 'Check key lists and prove which rows work'
complete -c keyboard-handler-keys -n "not __fish_seen_subcommand_from $commands" -a explain -d 'Explain a finding'
complete -c keyboard-handler-keys -n "not __fish_seen_subcommand_from $commands" -a card -d 'Print what the keys can do in each state'
complete -c keyboard-handler-keys -n "not __fish_seen_subcommand_from $commands" -a how -d 'Find the shortest keys for an action'
complete -c keyboard-handler-keys -n "not __fish_seen_subcommand_from $commands" -a what -d 'Say what keys do'
complete -c keyboard-handler-keys -n "not __fish_seen_subcommand_from $commands" -a why -d 'Say which rule decided about each key'
complete -c keyboard-handler-keys -n "not __fish_seen_subcommand_from $commands" -a diff -d 'Show how two folders of key lists differ'
complete -c keyboard-handler-keys -n "not __fish_seen_subcommand_from $commands" -a schema -d 'Print the JSON Schema of key lists'

complete -c keyboard-handler-keys -n "__fish_seen_subcommand_from check $plays" -F
complete -c keyboard-handler-keys -n "__fish_seen_subcommand_from check $plays" -l model -x -a 'Pellit Orvane' -d 'Model of the embosser'
complete -c keyboard-handler-keys -n "__fish_seen_subcommand_from check $plays" -l help -d 'Show the options'
complete -c keyboard-handler-keys -n "__fish_seen_subcommand_from check" -l hands -x -a '1 2 3 4' -d 'Keys that a person holds at once'
complete -c keyboard-handler-keys -n "__fish_seen_subcommand_from check" -l pace -x -d 'Minimum time between two movements, in ms'
complete -c keyboard-handler-keys -n "__fish_seen_subcommand_from check" -l format -x -a 'text lines json sarif' -d 'Output'
complete -c keyboard-handler-keys -n "__fish_seen_subcommand_from check" -l allow -x -d 'Leave out findings with this id, or ID:ACTION'
complete -c keyboard-handler-keys -n "__fish_seen_subcommand_from check" -l deny -x -a warning -d 'Count warnings as errors'
complete -c keyboard-handler-keys -n "__fish_seen_subcommand_from check" -l witness -x -a '(__fish_complete_directories)' -d 'Write key scripts of the rows that work'
complete -c keyboard-handler-keys -n "__fish_seen_subcommand_from check" -l fix -d 'Mend what has one safe mend'
complete -c keyboard-handler-keys -n "__fish_seen_subcommand_from card how what why" -l state -x -a 'Startup Idle Print PrintOff Update Error' -d 'Operating state'
complete -c keyboard-handler-keys -n "__fish_seen_subcommand_from diff" -l for -x -a 'users services' -d 'What to compare'
complete -c keyboard-handler-keys -n "__fish_seen_subcommand_from why" -l at -x -d 'Time in seconds'
complete -c keyboard-handler-keys -n "__fish_seen_subcommand_from card diff" -l format -x -a 'text json html' -d 'Output'
complete -c keyboard-handler-keys -n "__fish_seen_subcommand_from how" -l rows -d 'Write the rows into each script'
