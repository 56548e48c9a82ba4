# shellcheck shell=sh
# SPDX-License-Identifier: MIT
# Functions of the package tests. Each test works in a copy of a cached Debian root.
# Usage: set source to the source folder, then include this file.
: "${source:?}"
# shellcheck source-path=SCRIPTDIR source=../../../tools/cache.sh
. "$source/tools/cache.sh"
packages=$source/build/packages
# Only root can create roots with other users.
[ "$(id -u)" -eq 0 ] || exec sudo KEYBOARD_HANDLER_CACHE="$cache" "$0" "$@"
native=$(dpkg --print-architecture)

fail() {
    echo "FAILED: $*" >&2
    exit 1
}

# package NAME: prints the file of the package NAME for this machine.
package() {
    set -- "$packages/$1"_*_"$native".deb
    [ -f "$1" ] || fail "$1 does not exist: run tools/package"
    echo "$1"
}

# The version of the package and a newer one.
# shellcheck disable=SC2034
version=$(dpkg-deb -f "$(package keyboard-handler)" Version) newer_version=$version+1

# The dependencies of the packages; the first one of alternatives.
dependencies() {
    for name in keyboard-handler keyboard-handler-simulator keyboard-handler-tools; do
        dpkg-deb -f "$(package "$name")" Depends | tr ',' '\n'
    done | sed 's/|.*//; s/([^)]*)//; s/ //g' | grep -vx keyboard-handler | sort -u
}

# Creates a folder for the root of this test, $root, which is removed after the test, or by the next run if the test is
# killed.
new_root() {
    mkdir -p "$cache"
    # Locked until it is copied.
    exec 9>"$cache/package-root.lock"
    flock 9
    # shellcheck disable=SC2046
    "$source/tests/delivery/package/image" $(dependencies)
    folder=$source/build/package-tests/$(basename "$0" .sh)
    root=$folder/root
    remove_root
    trap 'remove_root' EXIT
    mkdir -p "$root"
}

# fill_root: copies the Debian root to $root, which may be a separate file system.
fill_root() {
    cp -a "$cache/package-root/." "$root"
    exec 9>&-
}

remove_root() {
    ! mountpoint -q "$root" || umount "$root"
    rm -rf "$folder"
}

# in_root COMMAND ARGUMENT...: runs the command as root in $root, without network and service manager.
in_root() {
    bwrap --die-with-parent --unshare-pid --unshare-ipc --unshare-uts --unshare-net --cap-add ALL \
        --bind "$root" / --dev /dev --proc /proc --ro-bind "$folder" /mnt --clearenv \
        --setenv PATH /usr/sbin:/usr/bin:/sbin:/bin --setenv DEBIAN_FRONTEND noninteractive --setenv LC_ALL C \
        --chdir / -- "$@"
}

# install FILE: installs the package FILE like an unattended upgrade.
install() {
    cp "$1" "$folder/package.deb"
    in_root dpkg --force-confdef --force-confold -i /mnt/package.deb >"$folder/dpkg.log" 2>&1 || {
        status=$?
        cat "$folder/dpkg.log" >&2
        return $status
    }
}

# newer_package VERSION [COMMAND]: prints the file of a copy of the daemon's package with another version. COMMAND, run in
# its folder, changes its content.
newer_package() {
    rm -rf "$folder/newer"
    dpkg-deb -R "$(package keyboard-handler)" "$folder/newer"
    sed -i "s/^Version: .*/Version: $1/" "$folder/newer/DEBIAN/control"
    (cd "$folder/newer" && eval "${2:-:}" && find etc usr -type f -exec md5sum {} + >DEBIAN/md5sums)
    dpkg-deb --root-owner-group -b "$folder/newer" "$folder/newer_$1.deb" >/dev/null
    echo "$folder/newer_$1.deb"
}

installed_version() {
    # shellcheck disable=SC2016
    in_root dpkg-query -W -f '${db:Status-Abbrev}${Version}' keyboard-handler
}

# The daemon prints its version only when the services that it waits for are ready.
program_version() {
    mkdir -p "$root/run/service-watcher"
    touch "$root/run/service-watcher/state-handler" "$root/run/service-watcher/speechd"
    in_root timeout 10 keyboard-handler --version
    rm -f "$root/run/service-watcher/state-handler" "$root/run/service-watcher/speechd"
}

# expect TEXT COMMAND...: checks that the command prints exactly TEXT.
expect() {
    expected=$1
    shift
    actual=$("$@") || fail "$* ended with status $?: $actual"
    [ "$actual" = "$expected" ] || fail "$*: expected '$expected', got '$actual'"
}
