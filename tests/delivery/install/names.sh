#!/bin/sh
# SPDX-License-Identifier: MIT
# Checks that installed files contain the configured names and no default names, and that the links of the installed
# documents lead to installed files. Usage: names.sh SOURCE_FOLDER
set -eu
source=$1
folder=$(mktemp -d)
trap 'rm -rf "$folder"' EXIT

fail() {
    echo "FAILED: $*" >&2
    exit 1
}

cmake -S "$source" -B "$folder/build" -G Ninja --log-level=WARNING -DCMAKE_INSTALL_PREFIX=/usr \
    -DKEYBOARD_HANDLER_SIMULATOR=OFF -DKEYBOARD_HANDLER_TESTS=OFF -DKEYBOARD_HANDLER_BUS_PREFIX=org.example \
    -DKEYBOARD_HANDLER_USER=panel-keys -DKEYBOARD_HANDLER_SERVICE_GROUP=printer-services \
    "-DKEYBOARD_HANDLER_DEPENDENCY_UNITS=states.service;voice.service" \
    "-DKEYBOARD_HANDLER_PANEL_NAMES=left-panel;right-panel" >/dev/null
cmake --build "$folder/build" --target manual-pages >/dev/null
# The folders whose content depends on names; they need no compilation.
for part in data docs packaging; do
    DESTDIR=$folder/root cmake -DCMAKE_INSTALL_COMPONENT=daemon -P "$folder/build/$part/cmake_install.cmake" >/dev/null
done
cd "$folder/root"
gunzip -r usr/share/man

# contains FILE TEXT: the installed file contains the text.
contains() {
    grep -qF -- "$2" "$1" || fail "$1 does not contain: $2"
}
contains usr/share/dbus-1/interfaces/org.example.KeyboardHandler.xml '<interface name="org.example.KeyboardHandler">'
contains usr/share/dbus-1/system.d/org.example.KeyboardHandler.conf '<allow own="org.example.KeyboardHandler"/>'
contains usr/share/dbus-1/system.d/org.example.KeyboardHandler.conf '<policy user="panel-keys">'
contains usr/share/dbus-1/system.d/org.example.KeyboardHandler.conf '<policy group="printer-services">'
contains usr/lib/systemd/system/keyboard-handler.service 'User=panel-keys'
contains usr/lib/systemd/system/keyboard-handler.service 'After=dbus.service states.service voice.service'
contains usr/lib/sysusers.d/keyboard-handler.conf 'm panel-keys printer-services'
contains usr/lib/sysusers.d/keyboard-handler.conf 'm panel-keys-recorder panel-keys'
contains usr/lib/tmpfiles.d/keyboard-handler.conf 'root printer-services'
contains usr/lib/udev/rules.d/71-keyboard-handler.rules 'ATTRS{name}=="right-panel"'
contains usr/lib/udev/rules.d/71-keyboard-handler.rules 'GROUP="panel-keys"'

left=$(grep -rlE 'com\.vantre|embosser-services|embosser-panel-|speechd\.service' . | grep -v '^./usr/share/doc/' || true)
[ -z "$left" ] || fail "files contain default names: $left"
left=$(find . -name '*com.vantre*')
[ -z "$left" ] || fail "files have default names: $left"

links=$(grep -ohE '\]\([^)#:]+' usr/share/doc/keyboard-handler/*.md | cut -c3- | sort -u)
[ -n "$links" ] || fail "no links were found"
for link in $links; do
    [ -e "usr/share/doc/keyboard-handler/$link" ] || fail "a document links to $link, which is not installed"
done
