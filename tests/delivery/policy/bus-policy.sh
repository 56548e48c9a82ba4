#!/bin/sh
# SPDX-License-Identifier: MIT
# Tests the installed bus policy on a real bus daemon. Creates private users, which requires root; for an ordinary user,
# they are mapped from /etc/subuid.
# Usage: bus-policy.sh DAEMON RULES TEST BUS_PREFIX CONTROL; TEST is the program BusAccessTest, CONTROL keyboard-handlerctl
set -eu
daemon=$1 rules=$2 walker=$3 prefix=$4 control=$5
name=$prefix.KeyboardHandler other_name=$prefix.StateHandler

if [ "$(id -u)" -ne 0 ]; then
    exec unshare --user --map-root-user --map-auto -- "$0" "$@"
fi

if [ "${INSIDE:-}" != yes ]; then
    # In the build folder, so that the next run removes it if this one is killed.
    folder=$(dirname "$walker")/bus-policy.machine
    rm -rf "$folder"
    mkdir "$folder"
    trap 'rm -rf "$folder"' EXIT
    cat >"$folder/passwd" <<'END'
root:x:0:0::/:/bin/sh
messagebus:x:800:800::/:/bin/sh
keyboard-handler:x:801:801::/:/bin/sh
service:x:802:802::/:/bin/sh
state-handler:x:803:803::/:/bin/sh
nobody:x:65534:65534::/:/bin/sh
END
    cut -d: -f 1,2,3 "$folder/passwd" | sed 's/$/:/; s/^nobody/nogroup/' >"$folder/group"
    echo "embosser-services:x:810:keyboard-handler,service" >>"$folder/group"
    # The other service has simple rules: only the service itself and the daemon may call it.
    cat >"$folder/other.conf" <<END
<busconfig>
  <policy user="state-handler">
    <allow own="$other_name"/>
    <allow send_destination="$other_name"/>
  </policy>
  <policy user="keyboard-handler">
    <allow send_destination="$other_name"/>
  </policy>
</busconfig>
END
    mkdir "$folder/input"
    mkfifo -m 666 "$folder/input/event0"
    chmod 755 "$folder"
    INSIDE=yes bwrap --die-with-parent --unshare-pid --cap-add ALL --ro-bind / / --dev /dev --proc /proc \
        --tmpfs /run --tmpfs /tmp --tmpfs /var/lib \
        --ro-bind "$folder/passwd" /etc/passwd --ro-bind "$folder/group" /etc/group \
        --bind "$folder/input" /dev/input \
        --tmpfs /etc/dbus-1/system.d --tmpfs /usr/share/dbus-1/system-services \
        --tmpfs /usr/share/dbus-1/system.d --ro-bind "$rules" "/usr/share/dbus-1/system.d/$name.conf" \
        --ro-bind "$folder/other.conf" /usr/share/dbus-1/system.d/other.conf \
        --ro-bind "$0" /tmp/test --ro-bind "$daemon" /tmp/daemon --ro-bind "$walker" /tmp/walker \
        --ro-bind "$control" /tmp/keyboard-handlerctl \
        -- /tmp/test /tmp/daemon - /tmp/walker "$prefix" /tmp/keyboard-handlerctl
    exit 0
fi

install -d -m 1775 -g embosser-services /run/service-watcher
touch /run/service-watcher/state-handler /run/service-watcher/speechd
install -d -o messagebus /run/dbus
setpriv --reuid messagebus --regid messagebus --init-groups --inh-caps=-all -- \
    dbus-daemon --system --nofork --nopidfile --nosyslog >/tmp/bus.log 2>&1 &
tries=0
until [ -S /run/dbus/system_bus_socket ]; do
    tries=$((tries + 1))
    [ $tries -lt 100 ] || { cat /tmp/bus.log; exit 1; }
    sleep 0.1
done
/tmp/walker /tmp/daemon "$control" || { tail -n 8 /tmp/bus.log; exit 1; }
