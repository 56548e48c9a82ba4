#!/bin/sh
# SPDX-License-Identifier: MIT
# A removal and reinstallation loses nothing and restores missing files. Usage: reinstall.sh SOURCE_FOLDER
set -eu
source=$1
# shellcheck source-path=SCRIPTDIR source=library.sh
. "$source/tests/delivery/package/library.sh"

new_root
fill_root
package=$(package keyboard-handler)
install "$package"
edited='{ "LongKeys": [] }'
in_root sh -c "echo '$edited' >/etc/keyboard-handler/longKeyList.json"

in_root dpkg --remove keyboard-handler >/dev/null
install "$package"
expect "$edited" in_root cat /var/lib/keyboard-handler/longKeyList.json
expect "enabled" in_root systemctl is-enabled keyboard-handler.service

# Restores a deleted user and deleted groups.
in_root sh -c 'userdel keyboard-handler && groupdel embosser-services' 2>/dev/null
! in_root id keyboard-handler 2>/dev/null || fail "the user still exists"
install "$package"
expect "keyboard-handler embosser-services" in_root id -Gn keyboard-handler
expect "root embosser-services" in_root stat -c '%U %G' /run/service-watcher

# Restores links and folders.
in_root rm -rf /var/lib/keyboard-handler /run/service-watcher
install "$package"
expect "$edited" in_root cat /var/lib/keyboard-handler/longKeyList.json
in_root test -d /run/service-watcher || fail "the folder of the service watcher was not restored"

# A disabled unit stays disabled.
in_root systemctl --quiet disable keyboard-handler.service 2>/dev/null
install "$package"
expect "disabled" in_root sh -c 'systemctl is-enabled keyboard-handler.service || true'

# A folder that cannot be created is reported, because the daemon would find no key lists.
in_root sh -c 'rm -rf /var/lib/keyboard-handler && touch /var/lib/keyboard-handler'
! install "$package" 2>"$folder/refusal" || fail "the missing folder was ignored"
grep -q "/var/lib/keyboard-handler.* is not a directory" "$folder/refusal" || fail "$(cat "$folder/refusal")"
in_root rm /var/lib/keyboard-handler
in_root dpkg --configure keyboard-handler >/dev/null
expect "ii $version" installed_version
expect "$edited" in_root cat /var/lib/keyboard-handler/longKeyList.json
