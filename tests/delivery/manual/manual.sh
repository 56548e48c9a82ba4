#!/bin/sh
# SPDX-License-Identifier: MIT
# The manual pages are well formed, tell of all keys and states, and are pages for the web that need nothing else.
# Usage: manual.sh PAGES_FOLDER IDENTIFIERS_HEADER
set -eu
pages=$1 identifiers=$2
faults=0

# Pages that this machine does not have installed are no faults.
found=$(mandoc -T lint "$pages"/*.[1-8] 2>/dev/null | grep -v "referenced manual not found" || true)
if [ -n "$found" ]; then
    echo "$found"
    faults=1
fi

for page in "$pages"/*.[1-8]; do
    [ -s "$page.html" ] || { echo "there is no $page.html" && faults=1; }
done
if grep -HoE '(href|src)="[^"#:]+"' "$pages"/*.html; then
    faults=1
fi

# names FAMILY: the identifiers of a family.
names() {
    sed -n "/^#define LS_$1_IDS/,/[^\\\\]\$/p" "$identifiers" | grep -oE 'ID\([A-Za-z]+,' | sed 's/ID(//; s/,//'
}
wanted=$(names KEY && names STATE)
[ "$(echo "$wanted" | wc -l)" -gt 20 ] || { echo "the identifiers are not found" && exit 1; }
text=$(mandoc -T markdown "$pages/keyboard-handler-keys.5")
for name in $wanted; do
    if [ "$name" != Unknown ] && ! echo "$text" | grep -qw "$name"; then
        echo "keyboard-handler-keys(5) does not tell of $name"
        faults=1
    fi
done
exit $faults
