#!/bin/sh
# SPDX-License-Identifier: MIT
# tools/prose finds misspelt words and each habit of its list, and accepts exceptions as long as they are needed.
# Usage: prose.sh SOURCE_FOLDER
set -eu
source=$1
folder=$(mktemp -d)
trap 'rm -rf "$folder"' EXIT
mkdir "$folder/tools"
cp "$source/tools/prose" "$source/tools/prose.words" "$folder/tools"
: >"$folder/tools/prose.allowed"
cd "$folder"
git init -q .

fail() {
    echo "FAILED: $*" >&2
    cat "$folder/output" >&2
    exit 1
}

# check STATUS [FILE...]
check() {
    expected=$1 status=0
    shift
    tools/prose "$@" >output 2>&1 || status=$?
    [ "$status" -eq "$expected" ] || fail "status $status instead of $expected"
}

cat >bad.md <<'END'
You recieve a line.
The count begins anew.
Nobody reads it.
The label is beside the key.
The page goes on.
The text stands in the field.
A user of its own, and a row of their own.
The page is told the state.
The watcher tells systemd.
No watch is to be had.
This is no list.
The page has none.
The key waits, for the two may be a pair.
The daemon has the key spoken.
What is not there is an error.
constexpr int longestLine = 3;
END
check 1 bad.md
number=0
while read -r line; do
    number=$((number + 1))
    grep -q "^bad.md:$number: .*: $line\$" output || fail "nothing found in line $number: $line"
done <bad.md
patterns=$(grep -c ' => ' tools/prose.words)
[ "$number" -eq $((patterns + 1)) ] || fail "$patterns habits and the spelling, but $number examples"

cat >good.md <<'END'
There is no bus. The label is next to the key, and maxLineLength is its limit.
The daemon is no longer ready. A stand-in is a fake.
A release speaks the name of its own key.
END
printf '// The count starts again.\n// It has two lines.\n' >good.cpp
check 0 good.md good.cpp
printf 'int a;\n// It has a comment.\n' >bad.cpp
check 1 bad.cpp

# The exceptions of a file; a needless one is a fault.
rm bad.md bad.cpp
echo 'The log says that nobody read it.' >log.md
git add .
check 1
echo 'log.md: nobody read' >tools/prose.allowed
check 0
echo 'log.md: anew' >>tools/prose.allowed
check 1
grep -q 'needless: log.md: anew' output || fail "a needless exception is not reported"
