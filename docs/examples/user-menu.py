#!/usr/bin/python3
# SPDX-License-Identifier: MIT
# Shows the keys that are meant for the user menu, and how long Menu is to be held. Needs python3-gi.
import sys
import time

from gi.repository import Gio, GLib

NAME = 'com.vantre.KeyboardHandler'
PATH = '/'
BUS_RETRY_SECONDS = 0.1


def show(line):
    print(line, flush=True)


def on_notification(connection, sender, path, interface, signal, parameters):
    (notification,) = parameters.unpack()
    # An action for two services is announced twice, once for each of them.
    if notification.get('receiverId') != 'UserMenu':
        return
    keys = [notification[key] for key in ('firstKey', 'secondKey') if key in notification]
    show(' '.join([notification['actionId'], *keys]))


def on_times(connection, result):
    try:
        (response,) = connection.call_finish(result).unpack()
    except GLib.Error as error:  # the daemon went away before it answered
        show(error.message)
        return
    show(f"Menu: {response['keyTimeouts'].get('Menu', 0)} ms")


def on_daemon(connection, name, owner):
    # The lists may be others than before the restart. An answer that is waited for would hold up the keys.
    command = {'commandId': GLib.Variant('s', 'GetLongKeysTimeout'), 'senderId': GLib.Variant('s', 'UserMenu')}
    connection.call(NAME, PATH, NAME, 'process', GLib.Variant('(a{sv})', (command,)), GLib.VariantType('(a{sv})'),
                    Gio.DBusCallFlags.NO_AUTO_START, -1, None, on_times)


def on_daemon_gone(connection, name):
    show('The daemon is not there.')


def open_bus():
    address = Gio.dbus_address_get_for_bus_sync(Gio.BusType.SYSTEM)
    flags = Gio.DBusConnectionFlags.AUTHENTICATION_CLIENT | Gio.DBusConnectionFlags.MESSAGE_BUS_CONNECTION
    while True:
        try:
            return Gio.DBusConnection.new_for_address_sync(address, flags)
        except GLib.Error:
            time.sleep(BUS_RETRY_SECONDS)


def watch():
    """Returns when the bus has ended."""
    connection = open_bus()
    loop = GLib.MainLoop()
    connection.connect('closed', lambda *_: loop.quit())
    # The sender is part of the subscription: any process, such as a second daemon, may send this signal.
    connection.signal_subscribe(NAME, NAME, 'notification', PATH, None, Gio.DBusSignalFlags.NONE, on_notification)
    # This also reports a daemon that is restarted. The subscription survives that.
    Gio.bus_watch_name_on_connection(connection, NAME, Gio.BusNameWatcherFlags.NONE, on_daemon, on_daemon_gone)
    loop.run()
    show('The bus is not there.')


if __name__ == '__main__':
    try:
        while True:
            watch()
    except KeyboardInterrupt:
        sys.exit(130)
