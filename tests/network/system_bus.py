"""A system bus of our own, and polkit on it."""
import contextlib
import os

from inside import end_with_parent
from processes import output_of, wait_for

SYSTEM_BUS = "/run/dbus/system_bus_socket"


def never_overtaken():
    """For polkitd before it becomes itself. A thread of its own runs the rules, and its word that they are done is lost when it comes between
    polkitd's look and its wait: each such check takes 15 seconds. With one processor, first come first served, the wait is there first."""
    end_with_parent()
    with contextlib.suppress(OSError):  # where a container forbids it; the fault is rare all the same
        os.sched_setaffinity(0, [min(os.sched_getaffinity(0))])
        os.sched_setscheduler(0, os.SCHED_FIFO, os.sched_param(1))


def wait_for_name(name, socket=SYSTEM_BUS):
    call = ("dbus-send", f"--bus=unix:path={socket}", "--print-reply", "--dest=org.freedesktop.DBus", "/", "org.freedesktop.DBus.NameHasOwner", f"string:{name}")
    wait_for(name, lambda: b"true" in output_of(*call))
