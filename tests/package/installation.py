"""What stands in the root: an ordinary user, the bus and polkit, the installed server and the installed client."""
import shlex
import shutil
import stat
from pathlib import Path

from client import Client
from company import Company
from inside import end_with_parent
from processes import expect, output_of, wait_for
from system_bus import never_overtaken, wait_for_name

PORT = 8091
EMPLOYEE, EMPLOYEE_ID = "chen", 4243
SERVICE_ID = 61234  # as systemd gives one to a service
CLIENT, ENTRY = "usr/bin/halvane", "com.halvane.Halvane.desktop"


class InstalledCompany(Company):
    """Its data is where the service has them, in /var/lib/private with a link to it."""

    def __init__(self, processes, root):
        kept = root / "var/lib/private/halvane-server"
        kept.mkdir(mode=0o700)
        kept.parent.chmod(0o711)
        root.run("chown", SERVICE_ID, "/var/lib/private/halvane-server")
        (root / "var/lib/halvane-server").symlink_to("private/halvane-server")
        program = root / "tmp/as-the-service"
        program.write_text("#!/bin/sh\nexec " + shlex.join(root.command("/usr/bin/halvane-server", user=SERVICE_ID)) + ' "$@"\n', encoding="utf-8")
        program.chmod(0o755)
        super().__init__(processes, program, root / "var/lib", None, port=PORT, preexec_fn=end_with_parent)
        self._data = root / "var/lib/halvane-server"
        self._access_log = self._data / "access.log"
        self._update_key = kept / "update-key.pem"
        self._own = lambda file: root.run("chown", SERVICE_ID, "/" + str(file.relative_to(root.place)))

    def sign_updates_with(self, key):
        """The private half, PEM, of the key that the clients were built with."""
        shutil.copyfile(key, self._update_key)
        self._update_key.chmod(0o600)
        self._own(self._update_key)


class InstalledClient(Client):
    """Started by an entry of the desktop, as the ordinary user. Its desktop is outside, its files are in the root."""

    def __init__(self, processes, desktop, company, root):
        super().__init__(processes, desktop, company, root / "usr")
        self.root = root
        self.name = "chen.xiao"  # in the certificate
        self.home = root / "home" / EMPLOYEE
        desktop.home, desktop.data, desktop.config, desktop.cache = (self.home / part for part in ("", ".local/share", ".config", ".cache"))
        self.tools = root / "usr/libexec/halvane"
        self.environment = {"HOME": f"/home/{EMPLOYEE}", "USER": EMPLOYEE, "DISPLAY": desktop.env["DISPLAY"],
                            "XDG_RUNTIME_DIR": f"/run/user/{EMPLOYEE_ID}", "DBUS_SESSION_BUS_ADDRESS": f"unix:path=/run/user/{EMPLOYEE_ID}/bus"}

    def start_another(self, *arguments, entry=f"usr/share/applications/{ENTRY}"):
        words = shlex.split(entry_value(self.root / entry, "Exec"))
        command = self.root.command(*words, *arguments, user=EMPLOYEE_ID, env=self.environment)
        return self._processes.start("client", command, None, preexec_fn=end_with_parent)

    def security(self, *arguments):
        return self.root.run("/usr/libexec/halvane/usr/bin/security", *arguments, user=EMPLOYEE_ID, env=self.environment)

    def certutil(self, *arguments):
        return self.root.run("certutil", *arguments, "-d", "sql:" + str(self.certificate_database()), user=EMPLOYEE_ID, env=self.environment)


def entry_value(file, key):
    """Of the entry itself, not of its actions."""
    for line in file.read_text(encoding="utf-8").splitlines():
        if line.startswith(f"{key}="):
            return line.partition("=")[2]
        expect(not line.startswith("[Desktop Action"), f"{file.name} has no {key}")
    return ""


def start_buses(processes, root):
    """With the configuration that the root's packages brought."""
    start = lambda name, *words, first=end_with_parent, **options: processes.start(name, root.command(*words, **options), None, preexec_fn=first)
    root.run("useradd", "--create-home", "--uid", EMPLOYEE_ID, "--shell", "/bin/sh", EMPLOYEE)
    runtime = root / f"run/user/{EMPLOYEE_ID}"
    runtime.mkdir(parents=True)
    runtime.chmod(stat.S_IRWXU)
    root.run("chown", EMPLOYEE_ID, f"/run/user/{EMPLOYEE_ID}")
    (root / "run/dbus").mkdir(exist_ok=True)
    start("system-bus", "dbus-daemon", "--system", "--nofork", "--nopidfile", "--nosyslog")
    socket = root / "run/dbus/system_bus_socket"
    wait_for("the system bus", socket.exists)
    start("polkitd", "/usr/lib/polkit-1/polkitd", first=never_overtaken)
    wait_for_name("org.freedesktop.PolicyKit1", socket)
    start("session-bus", "dbus-daemon", "--session", "--nofork", f"--address=unix:path=/run/user/{EMPLOYEE_ID}/bus", user=EMPLOYEE_ID)
    wait_for("the session bus", (runtime / "bus").exists)


def started_at_login(root, home):
    """Names of what systemd would start with a session of that user, by its own reading of the entries."""
    generated = root / "tmp/autostart"
    root.run("rm", "-rf", "/tmp/autostart")
    generated.mkdir()
    env = {"PATH": str(root / "usr/bin"), "XDG_CONFIG_DIRS": str(root / "etc/xdg"), "XDG_CONFIG_HOME": str(home / ".config"), "HOME": str(home),
           "SYSTEMD_LOG_TARGET": "console"}
    output_of("/usr/lib/systemd/user-generators/systemd-xdg-autostart-generator", generated, generated, generated, env=env)
    return {path.name: path.read_text(encoding="utf-8") for path in generated.glob("*.service")}
