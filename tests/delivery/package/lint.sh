#!/bin/sh
# SPDX-License-Identifier: MIT
# Checks the packages with lintian. Usage: lint.sh SOURCE_FOLDER
set -eu
source=$1
# shellcheck source-path=SCRIPTDIR source=library.sh
. "$source/tests/delivery/package/library.sh"

# Without overrides, lintian must report something, otherwise the check below is meaningless.
all=$(lintian --allow-root --no-override "$(package keyboard-handler)" || true)
case $all in
*"W: keyboard-handler: "*) ;;
*) fail "lintian reports nothing without overrides" ;;
esac

for arch in "$native" armhf; do
    set -- "$packages"/*_"$arch".deb
    [ -f "$1" ] || fail "packages for $arch are missing: run tools/package --arch $arch"
    lintian --allow-root --fail-on error,warning "$@"
    # Libraries are in the folder of their architecture.
    place=./usr/lib/$(dpkg-architecture -a "$arch" -q DEB_HOST_MULTIARCH)/
    libraries=$(dpkg-deb -c "$packages/keyboard-handler-dev"_*_"$arch".deb | awk '/\.a$/ { print $NF }')
    [ -n "$libraries" ] || fail "no libraries for $arch"
    ! echo "$libraries" | grep -vF "$place" || fail "not in $place"
done
