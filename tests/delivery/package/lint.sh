#!/bin/sh
# SPDX-License-Identifier: MIT
# The packages are as Debian wants them. Usage: lint.sh SOURCE_FOLDER
set -eu
source=$1
# shellcheck source-path=SCRIPTDIR source=library.sh
. "$source/tests/delivery/package/library.sh"

# Without overrides something is to be found, or the check below says nothing.
all=$(lintian --allow-root --no-override "$(package keyboard-handler)" || true)
case $all in
*"W: keyboard-handler: "*) ;;
*) fail "the check finds nothing where there is something" ;;
esac

for arch in "$native" armhf; do
    set -- "$packages"/*_"$arch".deb
    [ -f "$1" ] || fail "no packages for $arch: run tools/package --arch $arch"
    lintian --allow-root --fail-on error,warning "$@"
    # Libraries lie in the folder of their architecture.
    place=./usr/lib/$(dpkg-architecture -a "$arch" -q DEB_HOST_MULTIARCH)/
    libraries=$(dpkg-deb -c "$packages/keyboard-handler-dev"_*_"$arch".deb | awk '/\.a$/ { print $NF }')
    [ -n "$libraries" ] || fail "no libraries for $arch"
    ! echo "$libraries" | grep -vF "$place" || fail "not in $place"
done
