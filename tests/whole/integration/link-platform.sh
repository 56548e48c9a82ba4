#!/bin/sh
# SPDX-License-Identifier: MIT
# Links the daemon with separately installed platform libraries, as an integrator does with the maker's.
# Usage: link-platform.sh SOURCE_FOLDER BUILD_FOLDER SANITIZE; SANITIZE is ON or OFF, as in the build
set -eu
source=$1 build=$2 sanitize=$3
folder=$(mktemp -d)
trap 'rm -rf "$folder"' EXIT
maker=$folder/maker

cmake --install "$build" --component development --prefix "$maker" >"$folder/install.log"
cmake -S "$source" -B "$folder/build" -G Ninja -DCMAKE_BUILD_TYPE=Debug -DCMAKE_PREFIX_PATH="$maker" \
    -DKEYBOARD_HANDLER_PLATFORM=system -DKEYBOARD_HANDLER_SANITIZE="$sanitize" \
    -DKEYBOARD_HANDLER_SIMULATOR=OFF -DKEYBOARD_HANDLER_TOOLS=OFF -DKEYBOARD_HANDLER_TESTS=OFF >/dev/null
cmake --build "$folder/build" --target keyboard-handler

for library in ls vantre servicewatcher speech translation configurationmanager; do
    grep -q "$maker/.*lib$library\.a" "$folder/build/build.ninja" || {
        echo "lib$library is not the installed library"
        exit 1
    }
done
test -x "$folder/build/app/keyboard-handler"
