#!/bin/sh
# SPDX-License-Identifier: MIT
# log-lines.sh SOURCES: checks that the documents contain each error and warning in the daemon's sources.
set -eu
cd "$1"

texts=$(grep -rhozP --include='*.cpp' \
    '(?:LOG_(?:ERROR|WARNING)\(\)(?:\.noquote\(\))?|qCritical\(\)|qWarning\(\)|\berror\(\w*\)(?:\.noquote\(\))?)\s*<<\s*(?:[A-Za-z:]+\s*<<\s*)?"\K[^"\\]+' \
    app console device input keys service vocabulary platform | tr '\0' '\n'
grep -rhoP --include='*.cpp' 'describe\("\K[^"%]+' input)

count=0
missing=0
while IFS= read -r text; do
    text=$(printf '%s' "$text" | sed 's/ *$//')
    count=$((count + 1))
    if ! grep -qF -- "$text" docs/log-lines.md docs/console.md; then
        echo "not in docs/log-lines.md or docs/console.md: $text" >&2
        missing=$((missing + 1))
    fi
done <<END
$texts
END
echo "$count texts, $missing missing"
# Fewer would mean that the search above no longer matches the logging code.
[ "$count" -ge 35 ] && [ "$missing" -eq 0 ]
