#!/bin/sh
# SPDX-License-Identifier: MIT
# The installed simulator plays a script with the installed daemon. Usage: simulator.sh SOURCE_FOLDER
set -eu
source=$1
# shellcheck source-path=SCRIPTDIR source=library.sh
. "$source/tests/package/library.sh"

new_root
fill_root
install "$(package keyboard-handler)"
install "$(package keyboard-handler-simulator)"
cp "$source/tests/golden/menu-in-idle.keys" "$folder/script.keys"
mkdir -p "$root/dev/input"
in_root timeout 60 keyboard-handler-simulator /mnt/script.keys >"$folder/output" 2>&1 || fail "$(cat "$folder/output")"
grep -q "Menu" "$folder/output" || fail "the script was not played: $(cat "$folder/output")"
in_root dpkg --purge keyboard-handler-simulator >/dev/null
