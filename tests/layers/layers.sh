#!/bin/sh
# SPDX-License-Identifier: MIT
# Checks the direction of includes and imports, and that tests wait without timeouts. Usage: layers.sh SOURCE_FOLDER
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

forbid "the platform must not include the daemon" \
    "(app|service|input|keys|device|console|vocabulary|model|card|checker|control|simulator|workbench|tests)/" platform
forbid "the daemon must not include the model, the key card, the checker, the control program, the simulator, the workbench and the tests" \
    "(model|card|checker|control|simulator|workbench|tests)/" app service input keys device console vocabulary
forbid "only service/ and platform/ use the bus" "QDBus|QtDBus" app input keys device console vocabulary
forbid "only input/ and platform/ls/ use input records" "linux/input" app service keys device console vocabulary \
    platform/vantre platform/servicewatcher platform/speech platform/translation platform/configurationmanager
forbid "the vocabulary may include only the platform" "(app|service|input|keys|device|console)/" vocabulary
forbid "key rows and recognisers may include only the vocabulary and the speech" \
    "(app|service|input|console)/|device/(StateHandler|Embosser)" keys
forbid "device/ may include only the vocabulary" "(app|service|input|keys|console)/" device
forbid "an input device may include only the vocabulary" "(app|service|keys|device|console)/" input/Keyboard.h input/Keyboard.cpp
forbid "the model may include only the vocabulary, the key lists, the rules of keys and Qt Core" \
    "(app|service|input|device|console|card|checker|control|simulator|workbench|tests)/|keys/(LongKey|ModifierKey|ShortcutKey)|QDBus|Qt[A-Z][a-z]+/|(linux|sys)/|[a-z_]+\\.h>" model
forbid "the key card may include only the vocabulary, the key lists, the rules of keys and the model" \
    "(app|service|input|device|console|checker|control|simulator|workbench|tests)/|keys/(LongKey|ModifierKey|ShortcutKey)|QDBus|Qt[A-Z][a-z]+/|(linux|sys)/|[a-z_]+\\.h>" card
forbid "the checker may include only the vocabulary, the key lists, the rules of keys, the model, the key card and key scripts" \
    "(app|service|input|device|console|control|workbench|tests)/|simulator/(panel|device)/|keys/(LongKey|ModifierKey|ShortcutKey)|QDBus|linux/" checker
forbid "the control program may include only the vocabulary, the key lists, the rules of keys, the model, the key card, the checker and key scripts" \
    "(app|service|input|device|console|workbench|tests)/|simulator/(panel|device)/|keys/(LongKey|ModifierKey|ShortcutKey)" control
forbid "the simulator may include only the vocabulary, the key lists, the rules of keys and the model" \
    "(app|service|input|device|console)/|keys/(LongKey|ModifierKey|ShortcutKey)" simulator
forbid "the simulator must not include the key card, the checker, the control program, the workbench and the tests" "(card|checker|control|workbench|tests)/" simulator
forbid "key scripts must not include the panel and the device" "simulator/(panel|device)/" simulator/script
forbid "the panel may include only key scripts" "simulator/device/" simulator/panel
forbid "the workbench may include only the vocabulary, the key lists, the rules of keys, the model, the key card and the checker" \
    "(app|service|input|device|console|control|tests)/|keys/(LongKey|ModifierKey|ShortcutKey)" workbench
forbid "only the web server of the workbench may include the checker" "checker/" workbench/session workbench/braille \
    workbench/terminal
forbid "a session may include only the simulator and the model" "card/|workbench/(braille|web|terminal)/" workbench/session
forbid "braille may include only the key card" "(simulator|model)/|workbench/(session|web|terminal)/" workbench/braille
forbid "the web server must not include the terminal" "workbench/terminal/" workbench/web
forbid "only app/ creates the service object and the console" "app/" service input keys device console vocabulary

# Pairs of a module of the page and one that it imports.
imports=$(for module in workbench/page/*.js; do
    sed -nE "s@^(.* from|import) '\./(.*)';\$@${module##*/} \2@p" "$module"
done)
if ! echo "$imports" | grep -qx 'main\.js views\.js'; then
    echo "the pattern does not match an existing import"
    exit 1
fi
if ! found=$(echo "$imports" | tsort 2>&1 >/dev/null); then
    printf 'the modules of the page must not import each other in a circle:\n%s\n' "$found"
    broken=1
fi

# Waits with a timeout fail on a busy machine. The clock of the booted target does not depend on the machine.
found=$(grep -rnE '\b(QTRY_[A-Z]|qWaitFor\()' --include='*.h' --include='*.cpp' tests |
    grep -v '^tests/\(support/Waiting\.\|delivery/target/\)')
if [ -n "$found" ]; then
    printf 'tests wait with tests/support/Waiting.h:\n%s\n' "$found"
    broken=1
fi
exit $broken
