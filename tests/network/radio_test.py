#!/usr/bin/python3
"""The tools and a Wi-Fi device, over a NetworkManager that only pretends: no radio is ever used here.

What is looked at is what goes over the bus: the settings of the connection, the device on which it is joined, the switch.
"""
import argparse
import os
import pwd
import subprocess
import sys
import tempfile
from pathlib import Path

sys.path.append(str(Path(__file__).resolve().parent.parent / "e2e"))

import dbus
import dbusmock

from computer import NETWORK, PROFILE, Computer
from company import RADIUS
from employees import NetworkCompany
from processes import Processes, end_after, expect
from stage import take
from users import User

EMPLOYEE = "chen.xiao"
MANAGER, MANAGER_PATH = "org.freedesktop.NetworkManager", "/org/freedesktop/NetworkManager"
DISCONNECTED, ACTIVATED = 30, 100
NO_NETWORK, NO_DEVICE = 46, 45


class Radio:
    """A pretended NetworkManager with one Wi-Fi device, on a bus of its own."""

    def __init__(self):
        dbusmock.DBusTestCase.start_system_bus()
        self.environment = {"DBUS_SYSTEM_BUS_ADDRESS": os.environ["DBUS_SYSTEM_BUS_ADDRESS"]}
        self._bus = dbusmock.DBusTestCase.get_dbus(system_bus=True)
        self._process, self._manager = dbusmock.DBusTestCase.spawn_server_template(
            "networkmanager", {"NetworkingEnabled": True, "WirelessEnabled": True}, stdout=subprocess.DEVNULL)
        self._device = ""

    def end(self):
        self._process.terminate()
        self._process.wait(10)
        dbusmock.DBusTestCase.tearDownClass()

    def plug_in_device(self):
        self._device = self._manager.AddWiFiDevice("radio0", "wlan0", dbus.UInt32(DISCONNECTED))

    def come_into_reach(self):
        self._manager.AddAccessPoint(self._device, "point0", NETWORK, "00:23:F8:7E:12:BA", dbus.UInt32(2), dbus.UInt32(2437), dbus.UInt32(5400),
                                     dbus.Byte(82), dbus.UInt32(0x200))

    def property_of(self, path, interface, name):
        return self._bus.get_object(MANAGER, path).Get(interface, name, dbus_interface="org.freedesktop.DBus.Properties")

    def is_on(self):
        return bool(self.property_of(MANAGER_PATH, MANAGER, "WirelessEnabled"))

    def device_state(self):
        return int(self.property_of(self._device, f"{MANAGER}.Device", "State"))

    def connections(self):
        """Settings of each, as they went over the bus."""
        settings = self._bus.get_object(MANAGER, f"{MANAGER_PATH}/Settings")
        paths = settings.ListConnections(dbus_interface=f"{MANAGER}.Settings")
        return [self._bus.get_object(MANAGER, path).GetSettings(dbus_interface=f"{MANAGER}.Settings.Connection") for path in paths]


class RadioSteps:
    def __init__(self, radio, company, computer):
        self._radio = radio
        self._company = company
        self._computer = computer

    def steps(self):
        return [self.without_a_device, self.settings_that_go_over_the_bus, self.out_of_reach, self.in_reach, self.the_switch, self.removal]

    def _joins_with(self, code, words):
        answered, said, took = self._computer.join()
        expect(answered == code and words in said, f"{code}, {words}: not {answered}, {said}")
        return f"{answered}: {said.splitlines()[0] if said else 'joined'}, {took:.1f} s"

    def without_a_device(self):
        self._computer.provision(self._company, EMPLOYEE)
        return self._joins_with(NO_DEVICE, "there is no Wi-Fi device")

    def settings_that_go_over_the_bus(self):
        wifi, = [each for each in self._radio.connections() if each["connection"]["type"] == "802-11-wireless"]
        eap, home = wifi["802-1x"], self._computer.user.data / "halvane"
        path = lambda value: bytes(value).decode()
        expect(bytes(wifi["802-11-wireless"]["ssid"]) == NETWORK.encode(), "the name, without a NUL")
        expect(wifi["802-11-wireless-security"]["key-mgmt"] == "wpa-eap", "by certificate")
        expect(list(wifi["802-11-wireless-security"]["proto"]) == ["rsn"], "not the first WPA")
        expect(path(eap["private-key"]) == path(eap["client-cert"]) == f"file://{home}/identities/{EMPLOYEE}.p12\0", "the key's path, with its NUL")
        expect(path(eap["ca-cert"]) == f"file://{home}/profiles/{PROFILE}/authorities.pem\0", "the authority's path")
        expect(list(eap["eap"]) == ["tls"] and eap["domain-suffix-match"] == RADIUS, "EAP-TLS, the authenticator's name bound")
        expect("ca-path" not in eap and not eap.get("system-ca-certs", False), "nobody else's authority")
        return ", ".join(sorted(map(str, eap)))

    def out_of_reach(self):
        self._radio.plug_in_device()
        return self._joins_with(NO_NETWORK, "out of reach")

    def in_reach(self):
        self._radio.come_into_reach()
        joined = self._joins_with(0, "")
        expect(self._radio.device_state() == ACTIVATED, f"the device is in use, not {self._radio.device_state()}")
        return joined

    def the_switch(self):
        for state in ("off", "on"):
            done = self._computer.switch(state)
            expect(done.returncode == 0 and self._radio.is_on() == (state == "on"), f"the radios are {state}: {done.stderr}")
        return "off and on"

    def removal(self):
        self._computer.remove()
        expect(not self._radio.connections(), "no connection is left")
        return "nothing is left"


def main():
    parser = argparse.ArgumentParser(description=__doc__, formatter_class=argparse.RawDescriptionHelpFormatter)
    parser.add_argument("--build", type=Path, required=True, help="build directory with bin/, libexec/ and share/")
    build = parser.parse_args().build.resolve()
    end_after(100)
    good = False
    with tempfile.TemporaryDirectory(prefix="halvane-radio-") as folder:
        processes = Processes(Path(folder, "logs"))
        radio = Radio()
        try:
            company = NetworkCompany(processes, build, Path(folder, "company"))
            company.start()
            computer = Computer(radio, User(pwd.getpwuid(os.getuid()).pw_name, folder), build / "libexec/halvane")
            good = take(RadioSteps(radio, company, computer).steps(), lambda name: None)
        finally:
            processes.end_all()
            radio.end()
    return 0 if good else 1


if __name__ == "__main__":
    sys.exit(main())
