#!/bin/sh
# SPDX-License-Identifier: MIT
# Nothing is left of a test that is killed: its /tmp goes with it, and each test that may write there has such a one.
# Usage: left-nothing.sh BUILD_FOLDER PRIVATE_TMP..., the command that runs another one with a private /tmp
set -eu
build=$1
shift

name=left-by-a-killed-test-$$
# shellcheck disable=SC2016
written=$("$@" sh -c 'cd "$(mktemp -d)" && touch "/tmp/$1" && ls /tmp && kill -KILL $$' sh "$name" 2>/dev/null) || true
case $written in
*"$name"*) ;;
*) echo "the killed process wrote nothing: $written" && exit 1 ;;
esac
if [ -e "/tmp/$name" ]; then
    rm "/tmp/$name"
    echo "a file of a killed process is left in /tmp"
    exit 1
fi

# These write in folders of the build, which they empty themselves, or nowhere.
exempt='(layers|log-lines|matrix|manual|left-nothing|bus-policy)\.sh|tests/browser/install|tests/package/|tools/package|tools/guest/image'
commands=$(ctest --test-dir "$build" --show-only --verbose | grep 'Test command: ')
[ "$(echo "$commands" | wc -l)" -gt 50 ] || { echo "the tests are not listed" && exit 1; }
if echo "$commands" | grep -vE 'Test command: [^ ]*/bwrap ' | grep -vE "$exempt"; then
    echo "these have no private /tmp"
    exit 1
fi
