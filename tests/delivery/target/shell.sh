#!/bin/sh
# SPDX-License-Identifier: MIT
# Commands on the standard input of tools/guest/shell run on the device, and its panel presses keys.
# Usage: shell.sh SOURCE_FOLDER IMAGE
set -eu
source=$1 image=$2
output=$(mktemp)
trap 'rm -f "$output"' EXIT
status=0
"$source/tools/guest/shell" --image "$image" >"$output" <<'END' || status=$?
keyboard-handlerctl monitor >/run/monitor &
monitor=$!
until grep -q 'the state is' /run/monitor; do sleep 0.1; done
panel tap Help Feed
panel --device 1 hold Menu 3
panel state Print
panel tap Typo 2>&1
until grep -q 'the state changes to Print\|the state is Print' /run/monitor; do sleep 0.1; done
kill $monitor
cat /run/monitor
exit 3
END

# expect TEXT: fails unless the output has a line with it.
expect() {
    grep -q "$1" "$output" || { echo "no line has: $1" && cat "$output" && exit 1; }
}
expect 'announces PaperStatus to PrintManager'
expect 'announces MainMenu to UserMenu'
expect 'panel: "Typo" is not one of'
[ "$status" -eq 3 ] || { echo "status $status" && cat "$output" && exit 1; }
