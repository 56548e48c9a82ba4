#!/bin/sh
# SPDX-License-Identifier: MIT
# Gives keyboard-handler-keys files, inputs and outputs that cannot be used. Usage: outside-input.sh PROGRAM LISTS
set -u
program=$1 lists=$2
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
cd "$work" || exit 2
faults=0
: >input

fault() {
    printf '%s\n' "$1"
    faults=1
}

# expect STATUS TEXT ARGUMENT...: runs the program on the file "input". No output may have control characters.
expect() {
    status=$1 text=$2
    shift 2
    "$program" "$@" <input >output 2>&1
    actual=$?
    if [ $actual -ne "$status" ] || ! grep -qF -- "$text" output; then
        fault "$*: expected the status $status and \"$text\", but found $actual and: $(head -c 2000 output)"
    fi
    if LC_ALL=C grep -q "$(printf '[\001-\010\013-\037\177]\\|\302[\200-\237]')" output; then
        fault "$*: control characters in the output"
    fi
}

list='{ "ModifierKeys": [ { "keys": ["Help", "Feed"], "eAction": "A", "receiverService": "UserMenu", "validOnState": "Idle" } ] }'

# Files that are not there, or cannot be read.
expect 2 "./nothing cannot be read: No such file or directory." check ./nothing
mkdir empty folder folder/longKeyList.json
expect 2 "empty has no longKeyList.json, modifierKeyList.json or shortcutKeyList.json." check empty
expect 2 "folder/longKeyList.json cannot be read" check folder
expect 2 "/proc/self/mem cannot be read: Input/output error." check /proc/self/mem
expect 2 "/dev/zero is over the limit of 1048576 bytes" check /dev/zero
for command in what why how; do
    expect 2 "empty has no longKeyList.json" $command "tap Up" empty
done
expect 2 "empty has no longKeyList.json" diff empty "$lists"

# One file alone, by its sections or its name.
echo "$list" >some.json
expect 0 "longKeyList.json is not given: the list LongKeys counts as empty." check some.json
mkdir single
echo "$list" >single/modifierKeyList.json
expect 0 "longKeyList.json is missing: the list LongKeys counts as empty." check single
expect 0 "1 row: 0 errors, 0 warnings, 0 notes. Proved by" check some.json
expect 1 "some.json:1:21: error: the element is not a row, and the daemon skips it [element]" \
    check --format lines "$(printf '{ "ModifierKeys": [ 5 ] }' >some.json && echo some.json)"
[ "$(grep -c '^0 rows: 1 error' output)" -eq 1 ] || fault "check --format lines: $(cat output)"
echo "$list" >some.json
expect 2 "some.json and some.json are both lists of ModifierKeys." check some.json some.json
: >shortcutKeyList.json
expect 1 "error[syntax]: the file is empty" check shortcutKeyList.json
expect 0 "has no readable list ShortcutKeys, which counts as empty" what "tap Up" shortcutKeyList.json
: >other.json
expect 2 "other.json is empty, and its name is not that of a key list." check other.json
printf '{ "ModifierKeys": [\n  5,,\n] }' >other.json
expect 2 "other.json is not JSON (line 2, column 5: " check other.json
echo '{ "Keys": [] }' >other.json
expect 2 "other.json has no list LongKeys, ModifierKeys or ShortcutKeys" check other.json

# Standard input.
expect 2 "standard input is empty" check -
echo "$list" >input
expect 0 "1 row: 0 errors" check -
expect 0 "12 rows: 0 errors" check "$lists/longKeyList.json" "$lists/shortcutKeyList.json" - --allow silent
(printf '{ "LongKeys": [\n' && cat /dev/null && printf '{} ] }') | "$program" check - >output
grep -qF -- "--> standard input:2:1" output || fault "standard input in pieces: $(cat output)"
"$program" check - <&- >output 2>&1
[ $? -eq 2 ] || fault "closed standard input: $(cat output)"
: >input

# Texts that are not what they should be.
printf '\357\273\277%s' "$list" >some.json
expect 0 "1 row: 0 errors, 0 warnings" check some.json
printf '{ "ModifierKeys": [\n"\377" ] }' >modifierKeyList.json
expect 1 "error[syntax]: the file is not JSON: " check modifierKeyList.json
expect 1 "modifierKeyList.json:2:" check modifierKeyList.json
printf '{ "ModifierKeys": [\n{ "keys": ["\\u001b[2J\\u0007", "Feed"], "eAction": "\033[31m\\u202e", "\\u009b1m": "\\ud800" } ] }' >modifierKeyList.json
for format in text lines json sarif; do
    expect 1 "unknown-key" check --format $format modifierKeyList.json
done
head -c 1048577 /dev/zero | tr '\0' ' ' >modifierKeyList.json
expect 1 "error[too-large]" check modifierKeyList.json
name=$(printf 'a\033[2J%%3%%4.json')
echo '{ "ModifierKeys": [ 5 ] }' >"$name"
expect 1 "--> a\\u001b[2J%3%4.json:1:21" check "$name"
expect 2 "cannot be read" check "$(printf 'no\033[2J')"
for command in how what why explain check diff; do
    expect 2 "" $command "$(printf -- '--\033[2J')"
done

# Ids and actions that do not exist.
expect 2 '"foo" is not an id of a finding; keyboard-handler-keys explain --help lists all.' explain foo
expect 2 '"Silent" is not an id of a finding: did you mean "silent"? keyboard-handler-keys explain --help lists all.' explain Silent
[ "$(wc -l <output)" -eq 1 ] || fault "explain Silent: $(cat output)"
expect 2 '"Silent" is not an id of a finding: did you mean "silent"?' check --allow Silent "$lists"
expect 2 'No row has the action "LoadPapr": did you mean "LoadPaper"?' check --allow silent:LoadPapr "$lists"
expect 1 "error[syntax]" check --allow silent:Any shortcutKeyList.json
expect 2 "Unknown option 'help-all'." how --help-all

# Outputs that end early.
"$program" check "$lists" >/dev/full 2>errors
[ $? -eq 2 ] || fault "a full output: another status"
grep -q "could not be written" errors || fault "a full output: $(cat errors)"
mkdir many
{
    printf '{ "ModifierKeys": ['
    yes '5,' | head -n 20000
    printf '5 ] }'
} >many/modifierKeyList.json
{
    "$program" check many
    echo $? >status
} 2>errors | head -n 1 >/dev/null
# The shell adds 128 to the number of SIGPIPE.
[ "$(cat status)" -eq 141 ] || fault "a closed output: $(cat status errors)"

# Lists that are made to take long. What the program does not prove or print, it says.
# repeat TEXT COUNT: the text so many times, with commas between.
repeat() {
    yes "$1" | head -n "$2" | paste -sd , -
}
rest='"eAction": "A", "timeout": 1, "receiverService": "UserMenu", "validOnState":'
mkdir slow
echo "{ \"ModifierKeys\": [ { \"keys\": [$(repeat '"Up"' 100001)], $rest \"Idle\" } ] }" >slow/modifierKeyList.json
expect 3 "not proved: the search ended after" check slow/modifierKeyList.json
echo "{ \"ShortcutKeys\": [ $(repeat "{ \"keys\": [\"Up\", \"Ok\"], $rest \"Idle\" }" 8000) ] }" >slow/shortcutKeyList.json
expect 1 "of each kind, the first 1,000 findings are shown; left out: " check slow/shortcutKeyList.json
echo "{ \"LongKeys\": [ { \"keys\": [\"Up\"], $rest \"$(seq 100000 | paste -sd '|' -)\" } ] }" >slow/longKeyList.json
expect 1 "left out: 99,000" check slow/longKeyList.json
echo "{ \"$(head -c 1000000 /dev/zero | tr '\0' N)\": [] }" >slow/longKeyList.json
expect 1 "error[section]" check slow/longKeyList.json
head -c 1000000 /dev/zero | tr '\0' '[' >slow/longKeyList.json
expect 1 "error[syntax]" check slow/longKeyList.json
printf '[' >slow/longKeyList.json
expect 1 "error[syntax]" check slow/longKeyList.json
head -c 20000000 /dev/zero | tr '\0' 9 >slow/longKeyList.json
expect 1 "error[too-large]" check slow/longKeyList.json

# Witnesses.
"$program" check --allow silent --witness witnesses "$lists" >/dev/null || fault "witnesses: status $?"
[ "$(find witnesses -name '*.keys' | wc -l)" -gt 17 ] || fault "witnesses: $(ls witnesses)"
expect 2 "some.json/witnesses cannot be created" check --witness some.json/witnesses "$lists"
{
    (
        trap '' XFSZ
        ulimit -f 0
        exec "$program" check --witness full "$lists" >/dev/null 2>&3
    )
    echo $? >status
} 3>&1 | cat >errors
[ "$(cat status)" -eq 2 ] || fault "no space for witnesses: $(cat status)"
grep -q "cannot be written" errors || fault "no space for witnesses: $(cat errors)"
[ -z "$(ls full)" ] || fault "incomplete witnesses: $(ls full)"

# Mends.
mkdir mended
cp shortcutKeyList.json mended/
printf '{ "ModifierKeys": [\n%s\n] }\n' '{ "keys": ["Hlep", "Feed"], "eAction": "\u001b[2J", "receiverService": "UserMenu", "validOnState": "Idle" }' >mended/modifierKeyList.json
printf '{ "LongKeys": [\n%s\n] }\n' '{ "keys": ["\u001b[2J"], "eAction": "\u001b[2J", "receiverService": "UserMenue", "timeout": 1.5, "validOnState": "Idle" }' >mended/longKeyList.json
cp -r mended before
expect 2 "Standard input cannot be mended" check --fix -
{
    (
        trap '' XFSZ
        ulimit -f 0
        exec "$program" check --fix mended 2>&3 >/dev/null
    )
    echo $? >status
} 3>&1 | cat >errors
[ "$(cat status)" -eq 2 ] || fault "no space for mended files: $(cat status)"
grep -q "cannot be written" errors || fault "no space for mended files: $(cat errors)"
diff -r before mended || fault "no space for mended files: they have changed"
expect 1 'mended: mended/modifierKeyList.json:2:12: "Hlep" is now "Help"' check --fix mended
expect 1 "error[unknown-key]" check --fix mended
[ "$(find mended -type f | wc -l)" -eq 3 ] || fault "mended files: $(ls -A mended)"

# Held for days, a key without delay would act millions of times while the lists are compared.
mkdir days
cat >days/longKeyList.json <<'EOF'
{ "LongKeys": [{ "keys": ["Up"], "t]imeout": 1e300, "validOtState": "Idle" }, { "keys": ["Down"], "timeout": -0.33 }] }
EOF
expect 1 "2 rows" check --fix days

exit $faults
