#!/bin/sh
# SPDX-License-Identifier: MIT
# Checks the direction of includes, and that tests wait without timeouts. Usage: layers.sh SOURCE_FOLDER
set -u
cd "$1" || exit 2
broken=0

# forbid REASON PATTERN FOLDER...: checks that the folders exist and that no include in them matches the pattern.
forbid() {
    reason=$1 pattern=$2
    shift 2
    found=$(grep -rnE "^ *# *include *[<\"]($pattern)" --include='*.h' --include='*.cpp' "$@")
    if [ $? -ne 1 ]; then
        printf '%s:\n%s\n' "$reason" "$found"
        broken=1
    fi
}

# The pattern must be able to match, otherwise the checks below are meaningless.
if ! grep -rqE '^ *# *include *[<"](QDBus)' --include='*.cpp' platform; then
    echo "the pattern does not match an existing include"
    exit 1
fi

forbid "the platform knows nothing of the daemon" \
    "(app|service|input|keys|device|console|vocabulary|simulator|workbench|tests)/" platform
forbid "the daemon knows nothing of the simulator, the workbench and the tests" "(simulator|workbench|tests)/" \
    app service input keys device console vocabulary
forbid "the bus is for service/ and platform/" "QDBus|QtDBus" app input keys device console vocabulary
forbid "input records are for input/ and platform/ls/" "linux/input" app service keys device console vocabulary \
    platform/vantre platform/servicewatcher platform/speech platform/translation platform/configurationmanager
forbid "the vocabulary knows the platform only" "(app|service|input|keys|device|console)/" vocabulary
forbid "key rows and recognisers know the vocabulary and the speech only" \
    "(app|service|input|console)/|device/(StateHandler|Embosser)" keys
forbid "device/ knows the vocabulary only" "(app|service|input|keys|console)/" device
forbid "an input device knows the vocabulary only" "(app|service|keys|device|console)/" input/Keyboard.h input/Keyboard.cpp
forbid "the simulator knows the vocabulary, the key lists and the rules of keys only" \
    "(app|service|input|device|console)/|keys/(LongKey|ModifierKey|ShortcutKey)" simulator
forbid "the simulator knows nothing of the workbench and the tests" "(workbench|tests)/" simulator
forbid "key scripts know no panel and no device" "simulator/(panel|device)/" simulator/script
forbid "the panel knows key scripts only" "simulator/device/" simulator/panel
forbid "the workbench knows the vocabulary, the key lists and the rules of keys only" \
    "(app|service|input|device|console|tests)/|keys/(LongKey|ModifierKey|ShortcutKey)" workbench
forbid "a session knows the simulator only" "workbench/(card|web|terminal)/" workbench/session
forbid "the key card knows the rules of keys only" "simulator/(script|device)/|workbench/(session|web|terminal)/" workbench/card
forbid "the web server knows no terminal" "workbench/terminal/" workbench/web
forbid "only app/ builds the service object and the console" "app/" service input keys device console vocabulary

# Waits with a timeout fail on a busy machine. The clock of the booted target does not depend on the machine.
found=$(grep -rnE '\b(QTRY_[A-Z]|qWaitFor\()' --include='*.h' --include='*.cpp' tests |
    grep -v '^tests/\(support/Waiting\.\|delivery/target/\)')
if [ -n "$found" ]; then
    printf 'tests wait with tests/support/Waiting.h:\n%s\n' "$found"
    broken=1
fi
exit $broken
