#!/bin/sh
# SPDX-License-Identifier: MIT
# A killed test leaves no files in /tmp and no processes, and each test that could leave any is started like that.
# Usage: left-nothing.sh BUILD_FOLDER PRIVATE_TMP...; the latter is the command prefix of such tests
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
    echo "a killed process left a file in /tmp"
    exit 1
fi
if pgrep -f "^sleep $seconds" >/dev/null; then
    pkill -f "^sleep $seconds"
    echo "a child of a killed process is still running"
    exit 1
fi

# These tests write nothing or only to build folders that they clean themselves.
exempt='(layers|log-lines|matrix|manual|left-nothing|bus-policy)\.sh|tools/node-packages|tests/delivery/package/|tools/package|tools/guest/image'
commands=$(ctest --test-dir "$build" --show-only --verbose | grep 'Test command: ')
[ "$(echo "$commands" | wc -l)" -gt 50 ] || { echo "the tests are not listed" && exit 1; }
if echo "$commands" | grep -vE 'Test command: [^ ]*/bwrap ' | grep -vE "$exempt"; then
    echo "these have no private /tmp"
    exit 1
fi
