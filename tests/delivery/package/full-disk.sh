#!/bin/sh
# SPDX-License-Identifier: MIT
# An upgrade on a full disk fails and leaves the old version working. Usage: full-disk.sh SOURCE_FOLDER
set -eu
source=$1
# shellcheck source-path=SCRIPTDIR source=library.sh
. "$source/tests/delivery/package/library.sh"

new_root
mount -t tmpfs -o size=1G,mode=755 root "$root"
fill_root
install "$(package keyboard-handler)"
newer=$(newer_package "$newer_version" 'head -c 8M /dev/urandom >usr/share/doc/keyboard-handler/large')
used=$(df --output=used -k "$root" | tail -n 1)

# Room for dpkg's records, but not for the new version.
mount -o "remount,size=$((used + 4096))k" "$root"
! install "$newer" 2>"$folder/refusal" || fail "the new version was installed"
grep -q "No space left on device" "$folder/refusal" || fail "the upgrade failed for another reason: $(cat "$folder/refusal")"
expect "ii $version" installed_version
expect "keyboard-handler ${version%-*}" program_version
expect "" in_root dpkg --verify keyboard-handler

mount -o remount,size=1G "$root"
install "$newer"
expect "ii $newer_version" installed_version
expect "keyboard-handler ${version%-*}" program_version
