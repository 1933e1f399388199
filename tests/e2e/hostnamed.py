#!/usr/bin/python3
"""A hostnamed that knows a serial number, for machines whose firmware tells none: hostnamed.py SERIAL."""
import sys

import dbus
import dbus.mainloop.glib
import dbus.service
from gi.repository import GLib

NAME = "org.freedesktop.hostname1"


class Hostnamed(dbus.service.Object):
    def __init__(self, bus, serial):
        self._serial = serial
        self._owned = dbus.service.BusName(NAME, bus, do_not_queue=True)
        super().__init__(bus, "/org/freedesktop/hostname1")

    @dbus.service.method(NAME, out_signature="s")
    def GetHardwareSerial(self):
        return self._serial


def main():
    dbus.mainloop.glib.DBusGMainLoop(set_as_default=True)
    kept = Hostnamed(dbus.SystemBus(), sys.argv[1])
    print("ready", flush=True)
    GLib.MainLoop().run()
    del kept


if __name__ == "__main__":
    main()
