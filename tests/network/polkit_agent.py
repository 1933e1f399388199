#!/usr/bin/python3
"""Whom polkit asks on behalf of one process: polkit_agent.py PID. Notes the question and dismisses it."""
import sys
from pathlib import Path

import dbus
import dbus.mainloop.glib
import dbus.service
from gi.repository import GLib

PATH = "/lab/agent"
AGENT = "org.freedesktop.PolicyKit1.AuthenticationAgent"


class Dismissed(dbus.DBusException):
    _dbus_error_name = "org.freedesktop.PolicyKit1.Error.Cancelled"


class Agent(dbus.service.Object):
    @dbus.service.method(AGENT, in_signature="sssa{ss}sa(sa{sv})")
    def BeginAuthentication(self, action, message, _icon, _details, _cookie, _identities):
        print("asked", action, message, flush=True)
        raise Dismissed("the person closed the window")

    @dbus.service.method(AGENT, in_signature="s")
    def CancelAuthentication(self, _cookie):
        pass


def main():
    pid = int(sys.argv[1])
    started = Path(f"/proc/{pid}/stat").read_text(encoding="utf-8").rpartition(")")[2].split()[19]
    dbus.mainloop.glib.DBusGMainLoop(set_as_default=True)
    bus = dbus.SystemBus()
    kept = Agent(bus, PATH)
    subject = ("unix-process", {"pid": dbus.UInt32(pid), "start-time": dbus.UInt64(int(started))})
    authority = bus.get_object("org.freedesktop.PolicyKit1", "/org/freedesktop/PolicyKit1/Authority")
    authority.RegisterAuthenticationAgent(subject, "C", PATH, dbus_interface="org.freedesktop.PolicyKit1.Authority")
    print("ready", flush=True)
    GLib.MainLoop().run()
    del kept


if __name__ == "__main__":
    main()
