"""Into network, mount and host-name namespaces of our own: what is done there touches nothing of this machine."""
import ctypes
import os
import signal
import subprocess
import sys
from pathlib import Path

MARK = "HALVANE_LAB_INSIDE"
PROGRAMS = {"hostapd": "hostapd", "hostapd_cli": "hostapd", "wpa_supplicant": "wpasupplicant", "NetworkManager": "network-manager",
            "nmcli": "network-manager", "dnsmasq": "dnsmasq-base", "ip": "iproute2", "bridge": "iproute2", "pkexec": "pkexec"}
PLACES = ("/usr/sbin", "/usr/bin", "/sbin", "/bin")
UNSHARE = ("unshare", "--mount", "--net", "--uts", "--ipc", "--propagation", "private")


def program(name):
    """Its path; the administrator's directories are not on everybody's."""
    return next((str(path) for place in PLACES if (path := Path(place, name)).exists()), name)


def what_is_missing():
    """A sentence why there can be no lab here; empty when there can."""
    missing = sorted({package for name, package in PROGRAMS.items() if not Path(program(name)).exists()})
    if missing:
        return f"{', '.join(missing)} not installed (./dev test --network installs them)"
    # A pair of interfaces is the least of it, and the first that a container forbids.
    tried = subprocess.run([*UNSHARE, program("ip"), "link", "add", "try0", "type", "veth", "peer", "name", "try1"],
                           capture_output=True, check=False, timeout=10)
    return "" if tried.returncode == 0 else "no network namespaces on this machine for this user"


def end_with_parent():
    """For a child before it becomes its program: whatever kills the parent, the child goes with it. Programs that change
    their user or their capabilities lose this."""
    ctypes.CDLL(None).prctl(1, signal.SIGKILL)


def end_in_order():
    """Being asked to end is an exception like others: what was started is ended first."""
    signal.signal(signal.SIGTERM, lambda *_: sys.exit(1))


def enter(*more):
    """Starts this very program again inside; there it goes on behind this call. Namespaces end with their last process.
    `more`: what unshare is told besides."""
    if os.environ.get(MARK):
        return
    os.environ[MARK] = "1"
    os.execvp(UNSHARE[0], [*UNSHARE, *more, sys.executable, "-B", *sys.argv])
