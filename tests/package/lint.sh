#!/bin/sh
# SPDX-License-Identifier: MIT
# The packages are as Debian wants them. Usage: lint.sh SOURCE_FOLDER
set -eu
source=$1
# shellcheck source-path=SCRIPTDIR source=library.sh
. "$source/tests/package/library.sh"

# Without overrides something is to be found, or the check below says nothing.
all=$(lintian --allow-root --no-override "$(package keyboard-handler)" || true)
case $all in
*"W: keyboard-handler: "*) ;;
*) fail "the check finds nothing where there is something" ;;
esac

for file in "$packages"/*.deb; do
    lintian --allow-root --fail-on error,warning "$file"
done
