#!/usr/bin/python3
"""The part of a desktop that keeps the icons of StatusNotifierItem, and one that hangs.

Prints a line for each icon that is registered ("+ :1.7/StatusNotifierItem") and for each that goes ("- …"). With
--hang it owns the name and never answers.
"""
import sys

import dbus
import dbus.mainloop.glib
import dbus.service
from gi.repository import GLib

NAME = "org.kde.StatusNotifierWatcher"
PATH = "/StatusNotifierWatcher"
PROPERTIES = "org.freedesktop.DBus.Properties"
# The library that speaks for the icons looks here for what it may ask.
INTROSPECTED = f"""<interface name="{NAME}"><property name="IsStatusNotifierHostRegistered" type="b" access="read"/>
<property name="RegisteredStatusNotifierItems" type="as" access="read"/><property name="ProtocolVersion" type="i" access="read"/>"""


class StatusNotifierWatcher(dbus.service.Object):
    def __init__(self, bus):
        self._bus = bus
        self._items = []
        self._owned = dbus.service.BusName(NAME, bus, do_not_queue=True)
        super().__init__(bus, PATH)

    @dbus.service.method(dbus.INTROSPECTABLE_IFACE, in_signature="", out_signature="s", path_keyword="object_path", connection_keyword="connection")
    def Introspect(self, object_path, connection):
        whole = super().Introspect(object_path, connection)
        return whole.replace(f'<interface name="{NAME}">', INTROSPECTED)

    @dbus.service.method(NAME, in_signature="s", sender_keyword="sender")
    def RegisterStatusNotifierItem(self, service, sender):
        item = sender + service if service.startswith("/") else service + "/StatusNotifierItem"
        self._items.append(item)
        print("+", item, flush=True)
        self._bus.watch_name_owner(item.partition("/")[0], lambda owner: owner or self._gone(item))
        self.StatusNotifierItemRegistered(item)

    def _gone(self, item):
        if item in self._items:
            self._items.remove(item)
            print("-", item, flush=True)
            self.StatusNotifierItemUnregistered(item)

    @dbus.service.method(NAME, in_signature="s")
    def RegisterStatusNotifierHost(self, service):
        pass

    @dbus.service.method(PROPERTIES, in_signature="ss", out_signature="v")
    def Get(self, _interface, name):
        return self.GetAll(_interface)[name]

    @dbus.service.method(PROPERTIES, in_signature="s", out_signature="a{sv}")
    def GetAll(self, _interface):
        return {"IsStatusNotifierHostRegistered": True, "ProtocolVersion": 0,
                "RegisteredStatusNotifierItems": dbus.Array(self._items, signature="s")}

    @dbus.service.signal(NAME, signature="s")
    def StatusNotifierItemRegistered(self, item):
        pass

    @dbus.service.signal(NAME, signature="s")
    def StatusNotifierItemUnregistered(self, item):
        pass


def main():
    dbus.mainloop.glib.DBusGMainLoop(set_as_default=True)
    bus = dbus.SessionBus()
    if "--hang" in sys.argv:
        kept = dbus.service.BusName(NAME, bus, do_not_queue=True)
        bus.add_message_filter(lambda *_: 0)  # 0: handled, and nobody answers
    else:
        kept = StatusNotifierWatcher(bus)
    print("ready", flush=True)
    GLib.MainLoop().run()
    del kept


if __name__ == "__main__":
    main()
