#!/bin/sh
# SPDX-License-Identifier: MIT
# Nothing is left of a test that is killed: its /tmp and its processes go with it, and each test that may leave any is
# started like that. Usage: left-nothing.sh BUILD_FOLDER PRIVATE_TMP..., the command that starts another one so
set -eu
build=$1
shift

name=left-by-a-killed-test-$$
seconds=86400.$$
# shellcheck disable=SC2016
written=$("$@" sh -c 'sleep "$2" >/dev/null & touch "/tmp/$1" && ls /tmp && kill -KILL $$' sh "$name" "$seconds" 2>/dev/null) ||
    true
case $written in
*"$name"*) ;;
*) echo "the killed process wrote nothing: $written" && exit 1 ;;
esac
if [ -e "/tmp/$name" ]; then
    rm "/tmp/$name"
    echo "a file of a killed process is left in /tmp"
    exit 1
fi
if pgrep -f "^sleep $seconds" >/dev/null; then
    pkill -f "^sleep $seconds"
    echo "a child of a killed process runs on"
    exit 1
fi

# These write in folders of the build, which they empty themselves, or nowhere.
exempt='(layers|log-lines|matrix|manual|left-nothing|bus-policy)\.sh|tests/workbench/browser/install|tests/delivery/package/|tools/package|tools/guest/image'
commands=$(ctest --test-dir "$build" --show-only --verbose | grep 'Test command: ')
[ "$(echo "$commands" | wc -l)" -gt 50 ] || { echo "the tests are not listed" && exit 1; }
if echo "$commands" | grep -vE 'Test command: [^ ]*/bwrap ' | grep -vE "$exempt"; then
    echo "these have no private /tmp"
    exit 1
fi
