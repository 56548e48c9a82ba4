#!/bin/sh
# SPDX-License-Identifier: MIT
# Tests a first installation without a running service manager. Usage: install.sh SOURCE_FOLDER
set -eu
source=$1
# shellcheck source-path=SCRIPTDIR source=library.sh
. "$source/tests/delivery/package/library.sh"

new_root
fill_root
install "$(package keyboard-handler)"
expect "ii $version" installed_version
expect "keyboard-handler ${version%-*}" program_version
expect "" in_root dpkg --verify keyboard-handler

# The daemon's user is only in the services' group and cannot log in.
expect "keyboard-handler embosser-services" in_root id -Gn keyboard-handler
expect "/usr/sbin/nologin" in_root sh -c 'getent passwd keyboard-handler | cut -d: -f7'

# Every service may declare its readiness, but cannot revoke that of another one.
expect "1775 root embosser-services" in_root stat -c '%a %U %G' /run/service-watcher

for list in longKeyList modifierKeyList shortcutKeyList; do
    expect "/etc/keyboard-handler/$list.json" in_root readlink "/var/lib/keyboard-handler/$list.json"
    expect "644 root root" in_root stat -L -c '%a %U %G' "/var/lib/keyboard-handler/$list.json"
done
expect "enabled" in_root systemctl is-enabled keyboard-handler.service

# The unit is valid and well confined.
expect "" in_root sh -c \
    'systemd-analyze verify --man=no --recursive-errors=no /lib/systemd/system/keyboard-handler.service 2>&1'
in_root systemd-analyze security --offline=yes --threshold=7 keyboard-handler.service >"$folder/security" ||
    fail "the unit is not confined enough: $(tail -n 1 "$folder/security")"
expect "" in_root systemd-tmpfiles --create keyboard-handler.conf

# In an image builder without /proc, some files can be created only at the next boot.
in_root dpkg --purge keyboard-handler >/dev/null
in_root sh -c 'mount -t tmpfs none /proc && dpkg --install /mnt/package.deb' >"$folder/dpkg.log" 2>&1 ||
    fail "$(cat "$folder/dpkg.log")"
expect "ii $version" installed_version
expect "" in_root systemd-tmpfiles --create keyboard-handler.conf
in_root test -f /var/lib/keyboard-handler/longKeyList.json || fail "the boot did not create the files"
