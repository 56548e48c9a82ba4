#!/bin/sh
# SPDX-License-Identifier: MIT
# A run of the benchmarks can replace the figures of docs/performance.md, and nothing else in it.
# Usage: figures.sh SOURCE_FOLDER
set -eu
source=$1
folder=$(mktemp -d)
trap 'rm -rf "$folder"' EXIT
cp "$source/docs/performance.md" "$folder/document.md"
printf '%s\n' 'A machine:' '' '| $& | daemon |' '| new | 1 |' >"$folder/device.md"
printf '%s\n' '| rows | press |' '| 10 | 2 |' >"$folder/router.md"
printf '%s\n' '| rows | search |' '| 10 | 3 |' '' '| rows | step |' '| 10 | 4 |' >"$folder/model.md"
printf '%s\n' '| figure | alone |' '| p50 | 5 |' >"$folder/watched.md"
for name in device router model watched; do
    cat "$folder/$name.md"
    echo
done >"$folder/report.md"

node "$source/benchmarks/document.mjs" "$folder/document.md" "$folder/report.md"

sed -e '/^<!-- figures: /,/^<!-- end of figures/{//!d}' -e "/^<!-- figures: device/r $folder/device.md" \
    -e "/^<!-- figures: router/r $folder/router.md" -e "/^<!-- figures: model/r $folder/model.md" \
    -e "/^<!-- figures: watched/r $folder/watched.md" "$source/docs/performance.md" >"$folder/expected.md"
grep -q '^| new | 1 |$' "$folder/expected.md"
diff "$folder/expected.md" "$folder/document.md"

sed -i '/figures: router/d' "$folder/document.md"
if node "$source/benchmarks/document.mjs" "$folder/document.md" "$folder/report.md" 2>/dev/null; then
    echo "FAILED: a document without a place for the figures of the router is accepted" >&2
    exit 1
fi
