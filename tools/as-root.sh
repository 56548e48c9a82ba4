# SPDX-License-Identifier: MIT
# shellcheck shell=sh
# To be sourced: as_root COMMAND... runs a command as root.

as_root() {
    if [ "$(id -u)" -eq 0 ]; then "$@"; else sudo "$@"; fi
}
