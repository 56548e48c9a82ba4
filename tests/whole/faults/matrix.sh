#!/bin/sh
# SPDX-License-Identifier: MIT
# matrix.sh SOURCES: checks that each row of docs/reliability.md has its test, and each fault test its row.
set -eu
cd "$1"

tests=$(for file in tests/whole/faults/*Test.cpp; do
    program=$(basename "$file" .cpp)
    sed -n '/Q_SLOTS:/,/^$/s/^    void \([a-z][A-Za-z]*\)();$/\1/p' "$file" | sed "s/^/$program::/"
done | sort)
# shellcheck disable=SC2016 # the backquotes are part of the document
rows=$(sed -n 's/^|.*`\([A-Za-z]*Test::[A-Za-z]*\)` |$/\1/p' docs/reliability.md | sort)
printf '%s\n' "$tests"
[ "$(printf '%s\n' "$tests" | wc -l)" -ge 18 ]
[ "$tests" = "$rows" ] || { printf 'docs/reliability.md has these:\n%s\n' "$rows" >&2; exit 1; }
