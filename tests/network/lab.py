"""A computer in the lab: a system bus, NetworkManager and its supplicant of our own, on one end of the switch's cable."""
import shutil
import subprocess
from pathlib import Path

import users
from inside import end_with_parent, program
from processes import expect, output_of, wait_for
from switch import CABLE, Switch
from system_bus import SYSTEM_BUS, never_overtaken, wait_for_name

EMPLOYEES = ("chen", "li")
ACTIONS = Path("/usr/share/polkit-1/actions")
OWN_ROOMS = ("/run", "/etc/NetworkManager", "/var/lib/NetworkManager", "/etc/polkit-1", "/var/lib/polkit-1", "/usr/local")
CONNECTIONS = Path("/etc/NetworkManager/system-connections")

BUS = """<busconfig><type>system</type><listen>unix:path={0}</listen><listen>unix:path={1}</listen><auth>EXTERNAL</auth>
<policy context="default"><allow user="*"/><deny own="*"/><deny send_type="method_call"/><allow send_type="signal"/>
<allow send_requested_reply="true" send_type="method_return"/><allow send_requested_reply="true" send_type="error"/>
<allow receive_type="method_call"/><allow receive_type="method_return"/><allow receive_type="error"/><allow receive_type="signal"/>
<allow send_destination="org.freedesktop.DBus" send_interface="org.freedesktop.DBus"/>
<allow send_destination="org.freedesktop.DBus" send_interface="org.freedesktop.DBus.Introspectable"/>
<allow send_destination="org.freedesktop.DBus" send_interface="org.freedesktop.DBus.Properties"/></policy>
<includedir>/usr/share/dbus-1/system.d</includedir><includedir>/etc/dbus-1/system.d</includedir></busconfig>
"""
MANAGER = f"""[main]
plugins=keyfile
auth-polkit=true
no-auto-default=*
dhcp=internal
dns=none
rc-manager=unmanaged
systemd-resolved=false
hostname-mode=none
[device-lab]
match-device=interface-name:{CABLE}
managed=1
[connectivity]
enabled=false
"""
# What the stock policy lets somebody do who sits at the computer, for lab sessions do not exist for polkit.
RULES = """polkit.addRule(function(action, subject) {
    var own = ["network-control", "enable-disable-wifi", "wifi.scan", "settings.modify.own"];
    if (own.map(function(each) { return "org.freedesktop.NetworkManager." + each; }).indexOf(action.id) >= 0) return polkit.Result.YES;
});
"""


class Lab:
    """To be made inside namespaces (`inside.enter`). Everything ends with `processes`. The system bus is at its usual place
    in here, and for programs outside at FOLDER/bus. A folder below /run is gone with the namespaces."""
    RULES = RULES

    def __init__(self, processes, folder):
        self._processes = processes
        self._folder = Path(folder)
        self.environment = {"DBUS_SYSTEM_BUS_ADDRESS": f"unix:path={SYSTEM_BUS}"}
        self.manager = None
        self._polkit = None
        for room in OWN_ROOMS:
            Path(room).mkdir(parents=True, exist_ok=True)
            subprocess.run(["mount", "-t", "tmpfs", "-o", "mode=755", "lab", room], check=True)
        self._folder.mkdir(exist_ok=True)
        self.switch = Switch(processes, folder)

    def install(self, build, prefix):
        """The tools and their polkit action, as an installation has them."""
        prefix.mkdir(parents=True)
        subprocess.run(["mount", "--bind", build / "libexec/halvane", prefix], check=True)
        actions = self._folder / "actions"
        shutil.copytree(ACTIONS, actions)
        shutil.copy(build / "share/polkit-1/actions/com.halvane.policy", actions)
        subprocess.run(["mount", "--bind", actions, ACTIONS], check=True)

    def start(self):
        subprocess.run(["mount", "-t", "sysfs", "-o", "ro", "sysfs", "/sys"], check=True)
        users.add_to_this_namespace(self._folder, EMPLOYEES)
        users.give_sessions([0, *range(users.FIRST_ID, users.FIRST_ID + len(EMPLOYEES))])
        self.switch.start()
        self._start_bus()
        self._start_polkit()
        self._start_manager()

    def _start(self, name, *command, first=end_with_parent):
        return self._processes.start(name, command, {"PATH": "/usr/sbin:/usr/bin:/sbin:/bin", **self.environment}, preexec_fn=first)

    def _start_bus(self):
        Path(SYSTEM_BUS).parent.mkdir()
        configuration = self._folder / "bus.conf"
        configuration.write_text(BUS.format(SYSTEM_BUS, self._folder / "bus"), encoding="utf-8")
        self._start("bus", "dbus-daemon", f"--config-file={configuration}", "--nofork", "--nopidfile", "--nosyslog")
        wait_for("the system bus", lambda: Path(SYSTEM_BUS).exists() and (self._folder / "bus").exists())

    def _start_polkit(self):
        self.set_rules(RULES)
        # Its words are wanted in the log: it says when a check was given up.
        self._polkit = self._start("polkitd", "/usr/lib/polkit-1/polkitd", first=never_overtaken)
        wait_for_name("org.freedesktop.PolicyKit1")

    def set_rules(self, text):
        """polkitd notices by itself, a moment later."""
        folder = Path("/etc/polkit-1/rules.d")
        folder.mkdir(exist_ok=True)
        (folder / "10-lab.rules").write_text(text, encoding="utf-8")

    def _start_manager(self):
        Path("/etc/NetworkManager/NetworkManager.conf").write_text(MANAGER, encoding="utf-8")
        self._start("supplicant", program("wpa_supplicant"), "-u", "-t")
        wait_for_name("fi.w1.wpa_supplicant1")
        self.manager = self._start("manager", program("NetworkManager"), "--debug", "--log-level=INFO")
        wait_for_name("org.freedesktop.NetworkManager")
        self.wait_for_cable()

    def wait_for_cable(self, state="disconnected"):
        wait_for(f"the cable {state}", lambda: f"{CABLE}:{state}" in self.nmcli("-t", "-f", "DEVICE,STATE", "device"), 15.0)

    def end_polkit(self):
        self._processes.end(self._polkit)

    def nmcli(self, *words):
        return output_of(program("nmcli"), *words, env={"LC_ALL": "C.UTF-8", **self.environment}).decode()

    def connections(self):
        """Names of what NetworkManager keeps, without those that it makes up for what it finds."""
        return [line for line in self.nmcli("-t", "-f", "NAME", "connection").splitlines() if line not in ("lo", CABLE)]

    def logs(self):
        return sorted(self._processes.logs.glob("*.log"))

    @staticmethod
    def rooms():
        """Everything in NetworkManager's directories, those for one boot among them."""
        return [path for room in ("/etc/NetworkManager", "/run/NetworkManager", "/var/lib/NetworkManager") for path in Path(room).rglob("*")]

    @staticmethod
    def kept_files():
        """All that is in NetworkManager's own directories."""
        expect(Path("/etc/NetworkManager/NetworkManager.conf").exists(), "the rooms are the lab's")
        return [path for path in CONNECTIONS.parent.rglob("*") if path.is_file() and path.name != "NetworkManager.conf"]
