#!/bin/sh
# SPDX-License-Identifier: MIT
# The installed simulator plays a script with the installed daemon and serves the front panel.
# Usage: simulator.sh SOURCE_FOLDER
set -eu
source=$1
# shellcheck source-path=SCRIPTDIR source=library.sh
. "$source/tests/delivery/package/library.sh"

new_root
fill_root
install "$(package keyboard-handler)"
install "$(package keyboard-handler-simulator)"
cp "$source/tests/whole/golden/menu-in-idle.keys" "$folder/script.keys"
in_root timeout 60 keyboard-handler-simulator /mnt/script.keys >"$folder/output" 2>&1 || fail "$(cat "$folder/output")"
grep -q "Menu" "$folder/output" || fail "the script was not played: $(cat "$folder/output")"

# fetch PATH: prints the response of the front panel's server; fails on an error.
cat >"$folder/visit" <<'END'
fetch() {
    exec 3<>/dev/tcp/127.0.0.1/8765 || return
    printf 'GET %s HTTP/1.1\r\nHost: 127.0.0.1:8765\r\nConnection: close\r\n\r\n' "$1" >&3
    cat <&3
}
keyboard-handler-simulator --serve --no-demo >/tmp/output 2>&1 &
until fetch / >/tmp/page; do
    kill -0 $! || exit 1
    sleep 0.1
done 2>/dev/null
fetch /api/card.brf >/tmp/card
kill $!
END
in_root timeout 60 bash /mnt/visit || fail "the front panel is not served: $(cat "$root/tmp/output")"
grep -q "<title>" "$root/tmp/page" || fail "this is not the page: $(cat "$root/tmp/page")"
grep -q "^,KEY CARD" "$root/tmp/card" || fail "the card is not in braille: $(cat "$root/tmp/card")"
in_root dpkg --purge keyboard-handler-simulator >/dev/null
