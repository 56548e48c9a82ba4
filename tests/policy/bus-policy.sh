#!/bin/sh
# SPDX-License-Identifier: MIT
# Who may do what on the system bus, with the installed rules on a real bus daemon. The machine sees users of its own, so
# this needs root; an ordinary user gets the users from those in /etc/subuid.
# Usage: bus-policy.sh DAEMON RULES OTHER_SERVICE BUS_PREFIX, the last but one a service that has no rules of ours
set -eu
daemon=$1 rules=$2 other=$3 prefix=$4
name=$prefix.KeyboardHandler other_name=$prefix.StateHandler
users="root keyboard-handler service state-handler nobody"

if [ "$(id -u)" -ne 0 ]; then
    exec unshare --user --map-root-user --map-auto -- "$0" "$@"
fi

if [ "${INSIDE:-}" != yes ]; then
    folder=$(mktemp -d)
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
    # The other service has rules as simple as can be: it alone may call itself.
    cat >"$folder/other.conf" <<END
<busconfig>
  <policy user="state-handler">
    <allow own="$other_name"/>
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
        --ro-bind "$0" /tmp/test --ro-bind "$daemon" /tmp/daemon --ro-bind "$other" /tmp/other \
        -- /tmp/test /tmp/daemon - /tmp/other "$prefix"
    exit 0
fi

as() {
    user=$1
    shift
    setpriv --reuid "$user" --regid "$(id -g "$user")" --init-groups --inh-caps=-all -- "$@"
}

# wait_for COMMAND...: until the command succeeds.
wait_for() {
    tries=0
    until "$@" >/dev/null 2>&1; do
        tries=$((tries + 1))
        [ $tries -lt 100 ] || {
            echo "waited in vain for: $*"
            tail -n 8 /tmp/*.log
            exit 1
        }
        sleep 0.1
    done
}

# outcome USER DESTINATION INTERFACE MEMBER ARGUMENT...: how the bus takes a call.
outcome() {
    user=$1 destination=$2 interface=$3 member=$4
    shift 4
    if answer=$(as "$user" busctl --timeout=10 call "$destination" / "$interface" "$member" "$@" 2>&1); then
        echo answered
    else
        case $answer in
        *"Rejected send message"* | *"is not allowed to own the service"* | *"Access denied"*) echo refused ;;
        *) echo "$answer" ;;
        esac
    fi
}

failures=0
# row WHAT EXPECTED ARGUMENT...: the outcome of a call for each user, in the order of $users.
row() {
    what=$1 expected=$2
    shift 2
    actual=""
    for caller in $users; do
        actual="$actual $(outcome "$caller" "$@")"
    done
    if [ "$actual" != " $expected" ]; then
        printf '%s:\n  expected  %s\n  but had  %s\n' "$what" "$expected" "$actual"
        failures=$((failures + 1))
    fi
}

# command_row COMMAND TYPE VALUE...: the command with parameters, which are entries of the map.
command_row() {
    command=$1 entries=$2
    shift 2
    row "process $command" "answered answered answered refused refused" "$name" "$name" process "a{sv}" \
        $((entries + 2)) commandId s "$command" senderId s ServiceTool "$@"
}

install -d -m 1775 -g embosser-services /run/service-watcher
touch /run/service-watcher/state-handler /run/service-watcher/speechd
install -d -o messagebus /run/dbus
as messagebus dbus-daemon --system --nofork --nopidfile --nosyslog >/tmp/bus.log 2>&1 &
wait_for test -S /run/dbus/system_bus_socket
as state-handler /tmp/other "$other_name" >/tmp/other.log 2>&1 &
wait_for busctl status "$other_name"
as keyboard-handler /tmp/daemon </dev/null >/tmp/daemon.log 2>&1 &
wait_for test -e /run/service-watcher/keyboard-handler

#                                               root    keyboard-handler service state-handler nobody
command_row GetLastKey 0
command_row GetLongKeysTimeout 0
command_row GetModifierKeyList 0
command_row GetShortcutKeyList 0
command_row StartTestMode 0
command_row GetTestResult 0
command_row SimulateKey 2 actionId s Pressed key s Up
command_row SimulateModifier 1 keysList as 2 Help Ok
command_row SimulateShortcut 1 keysList as 2 Function Up
row "Introspect" "answered answered answered refused refused" \
    "$name" org.freedesktop.DBus.Introspectable Introspect
row "Ping" "answered answered answered refused refused" "$name" org.freedesktop.DBus.Peer Ping
row "Properties" "refused refused refused refused refused" "$name" org.freedesktop.DBus.Properties GetAll s "$name"
row "the member notification" "refused refused refused refused refused" "$name" "$name" notification "a{sv}" 0
# What the bus answers to the daemon's user is that the name has an owner.
row "owning the name" "refused answered refused refused refused" \
    org.freedesktop.DBus org.freedesktop.DBus RequestName su "$name" 4
row "owning a name below it" "refused refused refused refused refused" \
    org.freedesktop.DBus org.freedesktop.DBus RequestName su "$name.Panel" 4
row "process of another service" "refused refused refused answered refused" \
    "$other_name" "$other_name" process "a{sv}" 0
row "Introspect of another service" "refused refused refused answered refused" \
    "$other_name" org.freedesktop.DBus.Introspectable Introspect

for user in $users; do
    as "$user" gdbus monitor --system --dest "$name" --object-path / >"/tmp/monitor-$user.log" 2>&1 &
    wait_for grep -q "is owned by" "/tmp/monitor-$user.log"
done
# The key that ends the keyboard test, which one of the commands began.
busctl --quiet call "$name" / "$name" process "a{sv}" 4 commandId s SimulateKey senderId s ServiceTool \
    actionId s Released key s Ten
for user in $users; do
    wait_for grep -q "$name.notification" "/tmp/monitor-$user.log"
done
exit $((failures > 0))
