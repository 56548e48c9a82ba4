#!/bin/sh
# SPDX-License-Identifier: MIT
# A purge leaves nothing except the user and the groups. Usage: purge.sh SOURCE_FOLDER
set -eu
source=$1
# shellcheck source-path=SCRIPTDIR source=library.sh
. "$source/tests/delivery/package/library.sh"

# Every file with its type, mode, owner and content, except the records of dpkg and of users.
list_files() {
    (
        cd "$root"
        find . \( -path ./proc -o -path ./dev -o -path ./mnt -o -path ./var/lib/dpkg -o -path ./var/log \) -prune -o \
            ! -path './etc/passwd*' ! -path './etc/group*' ! -path './etc/shadow*' ! -path './etc/gshadow*' \
            ! -path ./etc/.pwd.lock -printf '%p %y %m %U %G %l\n'
        find etc usr var/lib/systemd -type f ! -path 'etc/*passwd*' ! -path 'etc/*group*' ! -path 'etc/*shadow*' -exec md5sum {} +
    ) | sort
}

new_root
fill_root
list_files >"$folder/before"
install "$(package keyboard-handler)"
list_files >"$folder/between"
! cmp -s "$folder/before" "$folder/between" || fail "the lists of files do not show the installation"

# Traces of use: edited and replaced lists, a readiness file, an older list that dpkg saved.
in_root sh -c 'echo {} >/etc/keyboard-handler/longKeyList.json
    rm /var/lib/keyboard-handler/modifierKeyList.json
    echo {} >/var/lib/keyboard-handler/modifierKeyList.json
    touch /run/service-watcher/keyboard-handler'
# shellcheck disable=SC2016
install "$(newer_package "$newer_version" 'echo >>etc/keyboard-handler/longKeyList.json')"
in_root dpkg --remove keyboard-handler >/dev/null
in_root test -f /etc/keyboard-handler/longKeyList.json || fail "the removal deleted the configuration files"
in_root dpkg --purge keyboard-handler >/dev/null

list_files >"$folder/after"
diff "$folder/before" "$folder/after" || fail "the purge left files or deleted too many"
