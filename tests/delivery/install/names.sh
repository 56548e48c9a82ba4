#!/bin/sh
# SPDX-License-Identifier: MIT
# What is installed carries the names that the build was given, and none of the default ones. Usage: names.sh SOURCE_FOLDER
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
# The folders whose content is made by names; nothing needs to be compiled for them.
for part in data packaging; do
    DESTDIR=$folder/root cmake -DCMAKE_INSTALL_COMPONENT=daemon -P "$folder/build/$part/cmake_install.cmake" >/dev/null
done
cd "$folder/root"
gunzip -r usr/share/man

# holds FILE TEXT: the installed file has the text.
holds() {
    grep -qF -- "$2" "$1" || fail "$1 does not hold: $2"
}
holds usr/share/dbus-1/interfaces/org.example.KeyboardHandler.xml '<interface name="org.example.KeyboardHandler">'
holds usr/share/dbus-1/system.d/org.example.KeyboardHandler.conf '<allow own="org.example.KeyboardHandler"/>'
holds usr/share/dbus-1/system.d/org.example.KeyboardHandler.conf '<policy user="panel-keys">'
holds usr/share/dbus-1/system.d/org.example.KeyboardHandler.conf '<policy group="printer-services">'
holds usr/lib/systemd/system/keyboard-handler.service 'User=panel-keys'
holds usr/lib/systemd/system/keyboard-handler.service 'After=dbus.service states.service voice.service'
holds usr/lib/sysusers.d/keyboard-handler.conf 'm panel-keys printer-services'
holds usr/lib/tmpfiles.d/keyboard-handler.conf 'root printer-services'
holds usr/lib/udev/rules.d/71-keyboard-handler.rules 'ATTRS{name}=="right-panel"'
holds usr/lib/udev/rules.d/71-keyboard-handler.rules 'GROUP="panel-keys"'

left=$(grep -rlE 'com\.vantre|embosser-services|embosser-panel-|speechd\.service' . | grep -v '^./usr/share/doc/' || true)
[ -z "$left" ] || fail "default names are left in: $left"
left=$(find . -name '*com.vantre*')
[ -z "$left" ] || fail "default names name: $left"
