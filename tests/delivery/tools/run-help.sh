#!/bin/sh
# SPDX-License-Identifier: MIT
# ./run --help prints the options of the simulator without installing or building anything.
# Usage: run-help.sh SOURCE_FOLDER SIMULATOR
set -eu
source=$1
simulator=$2
folder=$(mktemp -d)
trap 'rm -rf "$folder"' EXIT

fail() {
    echo "FAILED: $*" >&2
    exit 1
}

mkdir "$folder/bin"
for tool in apt-get cmake dpkg-query sudo; do
    printf '#!/bin/sh\necho %s >>%s\nexit 1\n' "$tool" "$folder/called" >"$folder/bin/$tool"
    chmod +x "$folder/bin/$tool"
done

# options FILE: prints the long options in the help, one a line.
options() {
    grep -oE -- '--[a-z][a-z-]*' "$1" | grep -vx -e --help-all | sort -u
}
"$simulator" --help >"$folder/simulator"
options "$folder/simulator" >"$folder/expected"
grep -qx -- --record "$folder/expected" || fail "the simulator's help has no options"
for option in --help -h; do
    PATH="$folder/bin:$PATH" "$source/run" "$option" >"$folder/run" 2>&1 || fail "$option: $(cat "$folder/run")"
    [ ! -e "$folder/called" ] || fail "$option called: $(cat "$folder/called")"
    options "$folder/run" >"$folder/options"
    diff "$folder/expected" "$folder/options" || fail "$option does not list the options of the simulator"
done
