"""The company's network: a switch whose port stays locked until its authenticator has seen a certificate."""
import contextlib
import socket
import subprocess
from pathlib import Path

from inside import end_with_parent, program
from processes import expect, wait_for

PORT, BRIDGE, CABLE = "sw0", "br0", "cl0"
SERVER, SERVICE, NETWORK = "10.77.0.1", 8077, 24
OWN_ADDRESS = "10.77.0.201"  # outside what the switch gives away

# A locked port lets only known stations through, and nothing is learned: the kernel itself keeps the others out.
ON_STATION = """#!/bin/sh
case $2 in
    AP-STA-CONNECTED) {bridge} fdb replace "$3" dev {port} master static ;;
    AP-STA-DISCONNECTED) {bridge} fdb del "$3" dev {port} master ;;
esac
"""
CONFIGURATION = """interface={port}
driver=wired
ieee8021x=1
eapol_version=2
eap_reauth_period=0
use_pae_group_addr=1
eap_server=1
eap_user_file={folder}/eap_users
ca_cert={authority}
server_cert={certificate}
private_key={certificate}
tls_session_lifetime=0
ctrl_interface={folder}/hostapd
"""


class Switch:
    """Stands in a network namespace of its own; the cable to it is in the caller's."""

    def __init__(self, processes, folder):
        self._processes = processes
        self._folder = Path(folder, "switch")
        self._folder.mkdir()
        self._authenticator = []
        self._certificates = ()
        self._namespace = ""

    def start(self):
        hub = self._processes.start("hub", ["unshare", "--net", "sleep", "3600"], None, preexec_fn=end_with_parent)
        own = Path("/proc/self/ns/net").readlink()
        wait_for("the switch's namespace", lambda: Path(f"/proc/{hub.pid}/ns/net").readlink() != own)
        self._namespace = f"--net=/proc/{hub.pid}/ns/net"
        _ip("link", "set", "lo", "up")
        _ip("link", "add", CABLE, "type", "veth", "peer", "name", PORT)
        _ip("link", "set", PORT, "netns", str(hub.pid))
        for words in (("link", "set", "lo", "up"), ("link", "add", BRIDGE, "type", "bridge"), ("link", "set", PORT, "master", BRIDGE),
                      ("addr", "add", f"{SERVER}/{NETWORK}", "dev", BRIDGE), ("link", "set", BRIDGE, "up"), ("link", "set", PORT, "up")):
            self._run(program("ip"), *words)
        self._run(program("bridge"), "link", "set", "dev", PORT, "locked", "on", "learning", "off")
        (self._folder / "eap_users").write_text("* TLS\n", encoding="utf-8")
        script = self._folder / "on_station"
        script.write_text(ON_STATION.format(bridge=program("bridge"), port=PORT), encoding="utf-8")
        script.chmod(0o755)
        self._start("service", ["/usr/bin/python3", "-m", "http.server", "--bind", SERVER, str(SERVICE), "--directory", str(self._folder)])
        self._start("addresses", [program("dnsmasq"), "--no-daemon", "--conf-file=/dev/null", f"--interface={BRIDGE}", "--bind-interfaces",
                                  "--port=0", "--dhcp-range=10.77.0.50,10.77.0.99,1h", "--dhcp-authoritative", "--no-ping",
                                  f"--dhcp-leasefile={self._folder}/leases"])

    def authenticate_with(self, certificate, authority):
        """A new authenticator in the place of the old one. Both are PEM files; stations have to join anew."""
        self._certificates = certificate, authority
        self.silence()
        configuration = self._folder / "hostapd.conf"
        configuration.write_text(CONFIGURATION.format(port=PORT, folder=self._folder, authority=authority, certificate=certificate), encoding="utf-8")
        control = self._folder / "hostapd" / PORT
        control.unlink(missing_ok=True)
        self._authenticator = [self._start("hostapd", [program("hostapd"), str(configuration)])]
        wait_for("the authenticator", control.exists)
        self._authenticator.append(self._start("hostapd_cli", [program("hostapd_cli"), "-p", str(control.parent), "-i", PORT, "-a",
                                                               str(self._folder / "on_station")]))
        wait_for("somebody who opens the port", lambda: self._cli("ping").strip() == "PONG")

    def forget_stations(self):
        """What pulling out the cable does: a computer that has left does not say so to its switch.

        Not by deauthenticating: hostapd would remove the station five seconds later, also one that has come again."""
        if self._authenticator:
            self.authenticate_with(*self._certificates)

    def silence(self):
        """The port stays closed and nobody answers at it."""
        for process in reversed(self._authenticator):
            self._processes.end(process)
        self._authenticator = []
        self._run(program("bridge"), "fdb", "del", _address(), "dev", PORT, "master", may_fail=True)

    def unplug(self):
        self._run(program("ip"), "link", "set", PORT, "down")

    def plug_in(self):
        self._run(program("ip"), "link", "set", PORT, "up")

    def knows_station(self):
        return _address() in self._run(program("bridge"), "fdb", "show", "dev", PORT)

    def _cli(self, *words):
        return self._run(program("hostapd_cli"), "-p", str(self._folder / "hostapd"), "-i", PORT, *words, may_fail=True)

    def _start(self, name, command):
        return self._processes.start(name, ["nsenter", self._namespace, *command], None, preexec_fn=end_with_parent)

    def _run(self, *command, may_fail=False):
        done = subprocess.run(["nsenter", self._namespace, *command], capture_output=True, text=True, timeout=20, check=False)
        expect(may_fail or done.returncode == 0, f"{' '.join(command)}: {done.stderr.strip()}")
        return done.stdout


def reachable(seconds=2.0):
    """Whether the company's service answers through the port."""
    with contextlib.suppress(OSError), socket.create_connection((SERVER, SERVICE), seconds) as connection:
        connection.sendall(b"HEAD / HTTP/1.0\r\n\r\n")
        return connection.recv(5) == b"HTTP/"
    return False


def reachable_by_cheating():
    """The same for somebody who takes an address without having been let in. NetworkManager clears the cable a moment after it
    has left it; an address that goes with that proves nothing, and is taken again."""
    own = (f"{OWN_ADDRESS}/{NETWORK}", "dev", CABLE)
    for _ in range(5):
        _ip("addr", "add", *own)
        try:
            reached = reachable(1.0)
        finally:
            kept = subprocess.run([program("ip"), "addr", "del", *own], check=False, capture_output=True, timeout=10).returncode == 0
        if reached or kept:
            return reached
    raise RuntimeError("no address stays on the cable")


def _address():
    return Path(f"/sys/class/net/{CABLE}/address").read_text(encoding="ascii").strip()


def _ip(*words):
    subprocess.run([program("ip"), *words], check=True, capture_output=True, timeout=10)
