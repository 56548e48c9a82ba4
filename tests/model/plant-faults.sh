#!/bin/sh
# SPDX-License-Identifier: MIT
# Plants the faults of a list into a copy of a source file. Usage: plant-faults.sh NAME FAULTS SOURCE COPY
set -eu
awk -v "file=$1" -f plant-faults.awk "$2" "$3" >"$4.new"
mv "$4.new" "$4"
