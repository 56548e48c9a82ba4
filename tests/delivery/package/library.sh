# shellcheck shell=sh
# SPDX-License-Identifier: MIT
# What the package tests share. Each test works in a Debian root of its own, a copy of one that is made once and kept in
# the cache folder. Usage: set source to the source folder, then include this file.
: "${source:?}"
# shellcheck source-path=SCRIPTDIR source=../../../tools/cache.sh
. "$source/tools/cache.sh"
packages=$source/build/packages
# Roots with users of their own are made by root.
[ "$(id -u)" -eq 0 ] || exec sudo KEYBOARD_HANDLER_CACHE="$cache" "$0" "$@"
native=$(dpkg --print-architecture)

fail() {
    echo "FAILED: $*" >&2
    exit 1
}

# package NAME: the file of the package NAME for this machine.
package() {
    set -- "$packages/$1"_*_"$native".deb
    [ -f "$1" ] || fail "no package $1: run tools/package"
    echo "$1"
}

# That of the package, and one that comes after it.
# shellcheck disable=SC2034
version=$(dpkg-deb -f "$(package keyboard-handler)" Version) newer_version=$version+1

# The packages that ours depend on, of alternatives the first one.
dependencies() {
    for name in keyboard-handler keyboard-handler-simulator; do
        dpkg-deb -f "$(package "$name")" Depends | tr ',' '\n'
    done | sed 's/|.*//; s/([^)]*)//; s/ //g' | grep -vx keyboard-handler | sort -u
}

# A folder for the root of this test, as $root; it goes with the test, or with the next run if the test is killed.
new_root() {
    mkdir -p "$cache"
    # Until it is copied.
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

# fill_root: puts the Debian root into $root, which may be a file system of its own by now.
fill_root() {
    cp -a "$cache/package-root/." "$root"
    exec 9>&-
}

remove_root() {
    ! mountpoint -q "$root" || umount "$root"
    rm -rf "$folder"
}

# in_root COMMAND ARGUMENT...: as root in the root, with no network and no service manager.
in_root() {
    bwrap --die-with-parent --unshare-pid --unshare-ipc --unshare-uts --unshare-net --cap-add ALL \
        --bind "$root" / --dev /dev --proc /proc --ro-bind "$folder" /mnt --clearenv \
        --setenv PATH /usr/sbin:/usr/bin:/sbin:/bin --setenv DEBIAN_FRONTEND noninteractive --setenv LC_ALL C \
        --chdir / -- "$@"
}

# install FILE: the package FILE, as an unattended upgrade does it.
install() {
    cp "$1" "$folder/package.deb"
    in_root dpkg --force-confdef --force-confold -i /mnt/package.deb >"$folder/dpkg.log" 2>&1 || {
        status=$?
        cat "$folder/dpkg.log" >&2
        return $status
    }
}

# newer_package VERSION [COMMAND]: prints the file of a package like that of the daemon, but with that version. The
# command changes its content and runs in its folder.
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

# The daemon answers only when the services that it waits for are ready.
program_version() {
    mkdir -p "$root/run/service-watcher"
    touch "$root/run/service-watcher/state-handler" "$root/run/service-watcher/speechd"
    in_root timeout 10 keyboard-handler --version
    rm -f "$root/run/service-watcher/state-handler" "$root/run/service-watcher/speechd"
}

# expect TEXT COMMAND...: the command prints exactly TEXT.
expect() {
    expected=$1
    shift
    actual=$("$@") || fail "$* ended with status $?: $actual"
    [ "$actual" = "$expected" ] || fail "$*: expected '$expected', got '$actual'"
}
