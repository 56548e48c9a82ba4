#!/bin/sh
# SPDX-License-Identifier: MIT
# The installed tools check key lists without the daemon. Usage: tools.sh SOURCE_FOLDER
set -eu
source=$1
# shellcheck source-path=SCRIPTDIR source=library.sh
. "$source/tests/delivery/package/library.sh"

new_root
fill_root
install "$(package keyboard-handler-tools)"
cp -r "$source/data" "$folder/lists"
in_root keyboard-handler-keys check /mnt/lists >"$folder/output" || fail "$(cat "$folder/output")"
grep -q '^warning\[silent\]: ' "$folder/output" || fail "these are not the findings: $(cat "$folder/output")"
expect "" in_root sh -c 'keyboard-handler-keys schema | cmp - /usr/share/keyboard-handler/key-list.schema.json'
# shellcheck disable=SC2016
expect "check" in_root bash -c '. /usr/share/bash-completion/completions/keyboard-handler-keys
    COMP_WORDS=(keyboard-handler-keys ch) COMP_CWORD=1
    _keyboard_handler_keys
    echo "${COMPREPLY[@]}"'

# The recorder is off and well confined, and can only read the panel.
expect "disabled" in_root sh -c 'systemctl is-enabled keyboard-handler-recorder.service || true'
in_root systemd-analyze security --offline=yes --threshold=10 keyboard-handler-recorder.service >"$folder/security" ||
    fail "the recorder is not confined enough: $(tail -n 1 "$folder/security")"
# shellcheck disable=SC2016,SC2046,SC2005
expect "DeviceAllow=/dev/input/event0 r DeviceAllow=/dev/input/event1 r" in_root sh -c \
    'echo $(grep ^DeviceAllow= /lib/systemd/system/keyboard-handler-recorder.service)'
in_root systemctl enable keyboard-handler-recorder.service >/dev/null 2>&1

in_root dpkg --purge keyboard-handler-tools >/dev/null
expect "" in_root sh -c 'find /etc/systemd -name "keyboard-handler-recorder*"'
