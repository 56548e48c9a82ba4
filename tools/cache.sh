# SPDX-License-Identifier: MIT
# shellcheck shell=sh disable=SC2034,SC2016
# To be sourced. Functions for files of the target system that take long to create and are therefore cached in
# KEYBOARD_HANDLER_CACHE, by default keyboard-handler in the user's cache folder.

cache=${KEYBOARD_HANDLER_CACHE:-${XDG_CACHE_HOME:-$HOME/.cache}/keyboard-handler}
release=bookworm

# The APT sources of the target system, from the archive of this machine's packages.
archive_lines() {
    uri=$(apt-get indextargets --format '$(REPO_URI) $(RELEASE)' 'Created-By: Packages' |
        awk -v release="$release" '$2 == release { print $1; exit }')
    [ -n "$uri" ] || { echo "no $release archive is configured; 'apt-get update' may be missing" >&2; return 1; }
    for suite in $release $release-updates; do
        echo "deb [signed-by=/usr/share/keyrings/debian-archive-keyring.gpg] $uri $suite main"
    done
}

# recipe FILE... -- PACKAGE...: a checksum of scripts and package versions. A cached folder with another one is rebuilt.
recipe() {
    {
        while [ "$1" != -- ]; do
            cat "$1"
            shift
        done
        shift
        apt-cache policy "$@" | grep -E '^[^ ]|Candidate'
    } | sha256sum | cut -d ' ' -f 1
}

# is_cached FOLDER RECIPE: whether FOLDER exists and was made with this recipe.
is_cached() {
    [ "$(cat "$1.recipe" 2>/dev/null)" = "$2" ] && [ -d "$1" ]
}

# finish NEW FOLDER RECIPE: replaces FOLDER by NEW.
finish() {
    rm -rf "$2" "$2.recipe"
    mv "$1" "$2"
    echo "$3" >"$2.recipe"
}
