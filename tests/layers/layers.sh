#!/bin/sh
# SPDX-License-Identifier: MIT
# Checks that includes run downwards only, and that tests wait without limits. Usage: layers.sh SOURCE_FOLDER
set -u
cd "$1" || exit 2
broken=0

# forbid REASON PATTERN FOLDER...: no include in these folders may match the pattern.
forbid() {
    reason=$1 pattern=$2
    shift 2
    found=$(grep -rnE "^ *# *include *[<\"]($pattern)" --include='*.h' --include='*.cpp' "$@")
    if [ -n "$found" ]; then
        printf '%s:\n%s\n' "$reason" "$found"
        broken=1
    fi
}

# The pattern must be able to match, or nothing below means anything.
if ! grep -rqE '^ *# *include *[<"](QDBus)' --include='*.cpp' platform; then
    echo "the check finds no include where there is one"
    exit 1
fi

forbid "the platform knows nothing of the daemon" "(app|service|input|keys|device|console|simulator|tests)/" platform
forbid "the daemon knows nothing of the simulator and the tests" "(simulator|tests)/" \
    app service input keys device console
forbid "the bus is for service/ and platform/" "QDBus|QtDBus" app input keys device console
forbid "input records are for input/ and platform/ls/" "linux/input" app service keys device console \
    platform/vantre platform/servicewatcher platform/speech platform/translation platform/configurationmanager
forbid "key rows and recognisers know the vocabulary only" "(app|input|console)/|service/Keyboard" keys
forbid "device/ knows the vocabulary only" "(app|input|keys|console)/|service/Keyboard" device
forbid "only app/ builds the service object and the console" "app/" service input keys device console

# Waits with a limit of time fail on a busy machine. The clock of the booted target does not depend on the machine.
found=$(grep -rnE '\b(QTRY_[A-Z]|qWaitFor\()' --include='*.h' --include='*.cpp' tests |
    grep -v '^tests/\(support/Waiting\.\|target/\)')
if [ -n "$found" ]; then
    printf 'tests wait with tests/support/Waiting.h:\n%s\n' "$found"
    broken=1
fi
exit $broken
