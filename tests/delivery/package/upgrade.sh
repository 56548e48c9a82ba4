#!/bin/sh
# SPDX-License-Identifier: MIT
# An upgrade keeps edited files and replaces the others. Usage: upgrade.sh SOURCE_FOLDER
set -eu
source=$1
# shellcheck source-path=SCRIPTDIR source=library.sh
. "$source/tests/delivery/package/library.sh"

new_root
fill_root
install "$(package keyboard-handler)"

edited='{ "LongKeys": [] }'
own='{ "ShortcutKeys": [] }'
in_root sh -c "echo '$edited' >/etc/keyboard-handler/longKeyList.json"
in_root sh -c "rm /var/lib/keyboard-handler/shortcutKeyList.json; echo '$own' >/var/lib/keyboard-handler/shortcutKeyList.json"

# shellcheck disable=SC2016
install "$(newer_package "$newer_version" 'for list in etc/keyboard-handler/*; do echo >>$list; done')"
expect "ii $newer_version" installed_version

# An edited list is kept, with the new one next to it.
expect "$edited" in_root cat /var/lib/keyboard-handler/longKeyList.json
in_root test -f /etc/keyboard-handler/longKeyList.json.dpkg-dist || fail "the new list is missing"
# A file that replaced a link is kept, too.
expect "$own" in_root cat /var/lib/keyboard-handler/shortcutKeyList.json
# An unedited list is replaced.
in_root cmp /etc/keyboard-handler/modifierKeyList.json /mnt/newer/etc/keyboard-handler/modifierKeyList.json
in_root cmp /var/lib/keyboard-handler/modifierKeyList.json /etc/keyboard-handler/modifierKeyList.json

# The same for a downgrade.
install "$(package keyboard-handler)"
expect "ii $version" installed_version
expect "$edited" in_root cat /var/lib/keyboard-handler/longKeyList.json
