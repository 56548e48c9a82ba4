# shellcheck shell=sh
# SPDX-License-Identifier: MIT
# What the package tests share. Each test works in a Debian root of its own, a copy of one that is made once and kept in
# the folder KEYBOARD_HANDLER_CACHE. Usage: set source to the source folder, then include this file.
: "${source:?}"
cache=${KEYBOARD_HANDLER_CACHE:-${XDG_CACHE_HOME:-$HOME/.cache}/keyboard-handler}
packages=$source/build/packages
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

# The packages that ours depend on, of alternatives the first one.
dependencies() {
    for name in keyboard-handler keyboard-handler-simulator; do
        dpkg-deb -f "$(package "$name")" Depends | tr ',' '\n'
    done | sed 's/|.*//; s/([^)]*)//; s/ //g' | grep -vx keyboard-handler | sort -u
}

# The archive that this machine installs its own packages from.
archive() {
    # shellcheck disable=SC2016
    apt-get indextargets --format '$(REPO_URI) $(RELEASE)' 'Created-By: Packages' |
        sed -n 's/ bookworm$//p' | head -n 1
}

# make_root ARCHIVE_FILE PACKAGE,...
make_root() {
    rm -f "$cache"/package-root-*.tar
    mmdebstrap --quiet --mode=root --variant=essential --include="$2" --aptopt='APT::Install-Recommends "false"' \
        bookworm "$cache/new-root.tar" \
        "deb [signed-by=/usr/share/keyrings/debian-archive-keyring.gpg] $(archive) bookworm main" 2>"$1.log" ||
        fail "$(cat "$1.log")"
    rm "$1.log"
    mv "$cache/new-root.tar" "$1"
}

# A root for this test, as $root; it goes with the test.
new_root() {
    [ "$(id -u)" -eq 0 ] || fail "roots with users of their own are made by root"
    wanted=$(printf 'udev,dbus,' && dependencies | paste -sd, -)
    image=$cache/package-root-$(printf '%s' "$wanted bookworm $native" | sha256sum | cut -c 1-16).tar
    mkdir -p "$cache"
    (
        flock 9
        [ -f "$image" ] || make_root "$image" "$wanted"
    ) 9>"$cache/package-root.lock"
    folder=$(mktemp -d)
    trap 'remove_root' EXIT
    root=$folder/root
    mkdir "$root"
}

# fill_root: puts the Debian root into $root, which may be a file system of its own by now.
fill_root() {
    tar -xf "$image" -C "$root" --numeric-owner --exclude './dev/*'
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
    actual=$("$@") || fail "$* ended with status $?"
    [ "$actual" = "$expected" ] || fail "$*: expected '$expected', got '$actual'"
}
