#!/bin/sh
# SPDX-License-Identifier: MIT
# Checks that the manual pages are well formed, mention all keys and states, and have self-contained web versions.
# Usage: manual.sh PAGES_FOLDER IDENTIFIERS_HEADER
set -eu
pages=$1 identifiers=$2
faults=0

# References to pages that are not installed on this machine are not faults.
found=$(mandoc -T lint "$pages"/*.[1-8] 2>/dev/null | grep -v "referenced manual not found" || true)
if [ -n "$found" ]; then
    echo "$found"
    faults=1
fi

for page in "$pages"/*.[1-8]; do
    [ -s "$page.html" ] || { echo "$page.html is missing" && faults=1; }
done
if grep -HoE '(href|src)="[^"#:]+"' "$pages"/*.html; then
    faults=1
fi

# names FAMILY: the identifiers of a family.
names() {
    sed -n "/^#define LS_$1_IDS/,/[^\\\\]\$/p" "$identifiers" | grep -oE 'ID\([A-Za-z]+,' | sed 's/ID(//; s/,//'
}
wanted=$(names KEY && names STATE)
[ "$(echo "$wanted" | wc -l)" -gt 20 ] || { echo "no identifiers were found" && exit 1; }
text=$(mandoc -T markdown "$pages/keyboard-handler-keys.5")
for name in $wanted; do
    if [ "$name" != Unknown ] && ! echo "$text" | grep -qw "$name"; then
        echo "keyboard-handler-keys(5) does not mention $name"
        faults=1
    fi
done
exit $faults
