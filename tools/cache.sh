# SPDX-License-Identifier: MIT
# shellcheck shell=sh disable=SC2034,SC2016
# Sourced by the tools that make things for the target system, which take long and are kept in a cache folder:
# KEYBOARD_HANDLER_CACHE, or keyboard-handler in the user's cache folder.

cache=${KEYBOARD_HANDLER_CACHE:-${XDG_CACHE_HOME:-$HOME/.cache}/keyboard-handler}
release=bookworm

# The archive lines for the target system, from the archive that this machine's own packages come from.
archive_lines() {
    uri=$(apt-get indextargets --format '$(REPO_URI) $(RELEASE)' 'Created-By: Packages' |
        awk -v release="$release" '$2 == release { print $1; exit }')
    [ -n "$uri" ] || { echo "no $release archive is set up here; 'apt-get update' may be missing" >&2; return 1; }
    for suite in $release $release-updates; do
        echo "deb [signed-by=/usr/share/keyrings/debian-archive-keyring.gpg] $uri $suite main"
    done
}

# recipe FILE... -- PACKAGE...: the checksum of what something is made by and of. It is made anew when that changes.
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

# is_made FOLDER RECIPE: whether FOLDER is there and was made by this recipe.
is_made() {
    [ "$(cat "$1.recipe" 2>/dev/null)" = "$2" ] && [ -d "$1" ]
}

# finish NEW FOLDER RECIPE: puts what was made in NEW into its place.
finish() {
    rm -rf "$2" "$2.recipe"
    mv "$1" "$2"
    echo "$3" >"$2.recipe"
}
